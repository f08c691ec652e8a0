#!/usr/bin/env bash
# Installs what is missing, builds the release tree and runs the main job on the demo dictionary.
source "$(dirname "$0")/scripts/common.sh"
install_missing
BUILD="$ROOT/build/release"
configure_and_build "$BUILD" Release -DBUILD_TESTING=OFF -DKRODICT_BUILD_BENCH=OFF -- odict
ODICT="$BUILD/tools/odict/odict"

"$ODICT" --version
"$ODICT" selfcheck

DEMO="$ROOT/examples/demo_drive.xml"
"$ODICT" info "$DEMO"
"$ODICT" check "$DEMO"
