#!/usr/bin/env bash
# Installs what is missing, builds the release tree and runs the main job on the demo dictionary:
# a summary and a check of examples/demo_drive.xml, then its exports into build/export: the three
# generated headers, the documentation package (build/export/doc) and, when the DITA Open Toolkit
# is installed, that package rendered to XHTML (build/export/doc-html/index.html).
source "$(dirname "$0")/scripts/common.sh"
install_missing
BUILD="$ROOT/build/release"
configure_and_build "$BUILD" Release -DBUILD_TESTING=OFF -DKRODICT_BUILD_BENCH=OFF -- odict
ODICT="$BUILD/tools/odict/odict"
DEMO="$ROOT/examples/demo_drive.xml"
OUT="$ROOT/build/export"

"$ODICT" --version
"$ODICT" selfcheck
echo
"$ODICT" info "$DEMO"
echo
"$ODICT" check "$DEMO"
echo
"$ODICT" export header "$DEMO" -o "$OUT/odict_demo_drive.h"
"$ODICT" export ids "$DEMO" -o "$OUT"
"$ODICT" export translation "$DEMO" -o "$OUT"
"$ODICT" export doc "$DEMO" -o "$OUT/doc"
render=0
"$ROOT/scripts/render-doc.sh" "$(ls "$OUT"/doc/*.ditamap)" "$OUT/doc-html" "$BUILD/doc-render" || render=$?
case "$render" in
    0) echo "rendered $OUT/doc-html/index.html" ;;
    77) echo "(the DITA Open Toolkit is not installed: the package is not rendered)" ;;
    *) exit 1 ;;
esac
echo
echo "The exports of the demo dictionary are in $OUT:"
ls -l "$OUT"
