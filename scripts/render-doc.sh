#!/usr/bin/env bash
# Renders a documentation package (odict export doc) to XHTML with the DITA Open Toolkit.
#   scripts/render-doc.sh MAP OUT_DIR WORK_DIR
# MAP is the package's .ditamap, OUT_DIR receives index.html and one page per topic, WORK_DIR
# holds the toolkit's temporary files and its log (render.log). Exit status: 0 rendered without
# a toolkit error, 1 the toolkit failed or logged an error, 77 the toolkit is not installed.
#
# The toolkit's Ant build says BUILD SUCCESSFUL even when it drops a topic that does not parse
# or that the map cannot find; it only logs [DOT...E] or [DOT...F]. So the log is read here.
set -euo pipefail

DITA_DIR=/usr/share/dita-ot
if [ $# -ne 3 ]; then
    echo "usage: $0 MAP OUT_DIR WORK_DIR" >&2
    exit 64
fi
if [ ! -f "$DITA_DIR/build.xml" ] || ! command -v ant >/dev/null; then
    echo "render-doc: the DITA Open Toolkit is not installed (packages dita-ot, ant, libxalan2-java)" >&2
    exit 77
fi

MAP="$(realpath "$1")"
OUT="$(realpath -m "$2")"
WORK="$(realpath -m "$3")"
rm -rf "$OUT" "$WORK"
mkdir -p "$OUT" "$WORK/temp"
LOG="$WORK/render.log"

# A quick JIT and the serial collector halve the run on two cores. dost.jar brings Xalan, Xerces
# and the catalog resolver; the lib directory holds the resolver's CatalogManager.properties,
# which points at the toolkit's catalog, so no DTD is fetched from the network.
status=0
ANT_OPTS="${ANT_OPTS:--XX:TieredStopAtLevel=1 -XX:+UseSerialGC}" \
ANT_HOME="${ANT_HOME:-/usr/share/ant}" \
    ant -noinput -f "$DITA_DIR/build.xml" -lib "$DITA_DIR/lib" -lib "$DITA_DIR/lib/dost.jar" \
        -Dargs.input="$MAP" -Doutput.dir="$OUT" -Ddita.temp.dir="$WORK/temp" -Dtranstype=xhtml \
        >"$LOG" 2>&1 || status=$?

if [ "$status" -ne 0 ]; then
    echo "render-doc: the toolkit failed (exit $status); the end of $LOG:" >&2
    tail -n 20 "$LOG" >&2
    exit 1
fi
if grep -E '\[DOT[A-Z]+[0-9]+[EF]\]' "$LOG" >&2; then
    echo "render-doc: the toolkit logged errors (above; the whole log is $LOG)" >&2
    exit 1
fi
if [ ! -f "$OUT/index.html" ]; then
    echo "render-doc: no index.html in $OUT" >&2
    exit 1
fi
