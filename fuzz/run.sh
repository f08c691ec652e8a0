#!/usr/bin/env bash
# Builds the libFuzzer targets (clang, build/fuzz) when needed and runs each for SECONDS.
#   fuzz/run.sh SECONDS [TARGET...]    every target, or the ones named
# Exit status: 0 nothing found, 1 a target found a crash, a leak, a timeout or a broken property
# (its input is in build/fuzz/findings/), 64 wrong arguments.
source "$(dirname "$0")/../scripts/common.sh"

if ! [[ "${1:-}" =~ ^[0-9]+$ ]]; then
    echo "usage: fuzz/run.sh SECONDS [TARGET...]" >&2
    exit 64
fi
SECS="$1"; shift
ALL=(fuzz_dict_std fuzz_dict_value fuzz_dict_editor fuzz_dict_parameter
     fuzz_datafile_values fuzz_datafile_parameters fuzz_stream fuzz_variant_text)
TARGETS=("$@")
[ ${#TARGETS[@]} -eq 0 ] && TARGETS=("${ALL[@]}")

install_missing
BUILD="$ROOT/build/fuzz"
CXX=clang++ configure_and_build "$BUILD" RelWithDebInfo -DKRODICT_FUZZ=ON -DBUILD_TESTING=OFF \
    -DKRODICT_BUILD_BENCH=OFF -DKRODICT_BUILD_TOOLS=OFF -- "${TARGETS[@]}"

SEEDS="$ROOT/fuzz/seeds"
# Seed directories of each target: the test data and the example for the dictionary loaders.
seeds_of() {
    case "$1" in
        fuzz_dict_parameter)  echo "$SEEDS/parametersets $ROOT/autotests/data" ;;
        fuzz_dict_*)          echo "$SEEDS/dictionary $ROOT/autotests/data $ROOT/examples" ;;
        fuzz_datafile_*)      echo "$SEEDS/datafile" ;;
        fuzz_stream)          echo "$SEEDS/stream" ;;
        fuzz_variant_text)    echo "$SEEDS/variant" ;;
    esac
}

# A smaller quarantine than ASan's 256 MB: at tens of thousands of inputs a second it otherwise
# grows the resident size towards the memory limit without any leak.
export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1:quarantine_size_mb=64"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
mkdir -p "$BUILD/findings" "$BUILD/logs"
failed=()
for t in "${TARGETS[@]}"; do
    corpus="$BUILD/corpus/$t"
    mkdir -p "$corpus"
    # Inputs up to 16 kB: large enough for every element kind, small enough to stay fast. The
    # first corpus directory collects what the run finds new; the seeds are only read.
    # shellcheck disable=SC2046
    if "$BUILD/fuzz/$t" -max_total_time="$SECS" -max_len=16384 -timeout=10 -rss_limit_mb=2048 \
            -dict="$ROOT/fuzz/odict.dict" -artifact_prefix="$BUILD/findings/$t-" -print_final_stats=1 \
            "$corpus" $(seeds_of "$t") >"$BUILD/logs/$t.log" 2>&1; then
        status="ok"
    else
        status="FINDING"
        failed+=("$t")
    fi
    printf '%-26s %-8s %s\n' "$t" "$status" "$(grep -a -E '^#[0-9]+' "$BUILD/logs/$t.log" | tail -1)"
done

if [ ${#failed[@]} -gt 0 ]; then
    echo "findings in: ${failed[*]} (logs in $BUILD/logs, inputs in $BUILD/findings)" >&2
    exit 1
fi
