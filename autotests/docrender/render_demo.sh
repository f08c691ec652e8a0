#!/usr/bin/env bash
# render_demo.sh ODICT DICTIONARY WORK_DIR
# Exports the dictionary's documentation package, renders it with the DITA Open Toolkit
# (scripts/render-doc.sh, which fails on any [DOT...E]/[DOT...F] line of the toolkit's log) and
# checks that every topic of the package became a page: the toolkit drops a topic it cannot
# read with no more than a log line.
set -euo pipefail
ODICT="$1"
DICTIONARY="$2"
WORK="$3"
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"

rm -rf "$WORK"
"$ODICT" export doc "$DICTIONARY" -o "$WORK/doc" >/dev/null
MAP="$(ls "$WORK"/doc/*.ditamap)"

status=0
start=$SECONDS
"$ROOT/scripts/render-doc.sh" "$MAP" "$WORK/html" "$WORK/toolkit" || status=$?
if [ "$status" -eq 77 ]; then
    echo "SKIPPED: the DITA Open Toolkit is not installed (./test.sh installs dita-ot, ant, libxalan2-java)"
    exit 77
fi
[ "$status" -eq 0 ] || exit 1
echo "rendered in $((SECONDS - start)) s"

missing=0
for topic in "$WORK"/doc/*.dita; do
    page="$WORK/html/$(basename "$topic" .dita).html"
    if [ ! -s "$page" ]; then
        echo "no page for $(basename "$topic")" >&2
        missing=1
    fi
done
[ "$missing" -eq 0 ] || exit 1
echo "$(ls "$WORK"/doc/*.dita | wc -l) topics rendered, $(grep -l '<reference' "$WORK"/doc/*.dita | wc -l) of them reference topics"
