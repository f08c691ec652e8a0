#!/usr/bin/env bash
# Builds the benchmark suite (Release, build/bench), runs it pinned to one core with five
# repetitions, and prints the tables of docs/performance.md (medians with min-max).
#   bench/run_suite.sh                      all sizes, 5 repetitions
#   KRODICT_BENCH_SIZES=1000 bench/run_suite.sh --benchmark_repetitions=2    a quick look
#   bench/run_suite.sh --table-only FILE... the tables of earlier runs (a later file wins)
# Further arguments go to the suite (for example --benchmark_filter=Load).
set -euo pipefail
HERE="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
ROOT="$(cd "$HERE/.." && pwd)"

if [ "${1:-}" = "--table-only" ]; then
    exec python3 "$HERE/suite_table.py" "${@:2}"
fi

source "$ROOT/scripts/common.sh"
install_missing
BUILD="$ROOT/build/bench"
configure_and_build "$BUILD" Release -DBUILD_TESTING=OFF -- bench_suite

OUT="${KRODICT_BENCH_OUT:-$BUILD/suite.json}"
# The files and the exports go to tmpfs when there is one: the documentation package writes one
# file per object, and on a disk shared with builds that measures the disk, not the library.
if [ -z "${KRODICT_BENCH_TMPDIR:-}" ] && [ -d /dev/shm ] && [ -w /dev/shm ]; then
    KRODICT_BENCH_TMPDIR=/dev/shm
fi
[ -n "${KRODICT_BENCH_TMPDIR:-}" ] && export TMPDIR="$KRODICT_BENCH_TMPDIR"
PIN=()
command -v taskset >/dev/null && PIN=(taskset -c "${KRODICT_BENCH_CPU:-1}")
"${PIN[@]}" "$BUILD/bench/bench_suite" --benchmark_repetitions=5 --benchmark_display_aggregates_only=true \
    --benchmark_out="$OUT" --benchmark_out_format=json "$@" >&2
echo "== results: $OUT" >&2
python3 "$HERE/suite_table.py" "$OUT"
