#!/usr/bin/env bash
# Installs what is missing, builds the release tree and runs the main job on the demo dictionary:
# a summary and a check of examples/demo_drive.xml, then its three exports into build/export.
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
echo
echo "The exports of the demo dictionary are in $OUT:"
ls -l "$OUT"
