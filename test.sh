#!/usr/bin/env bash
# Installs what is missing, builds the test tree and runs every test through ctest.
#   ./test.sh             the test build (build/test)
#   ./test.sh --sanitize  the same with AddressSanitizer and UndefinedBehaviorSanitizer (build/asan)
#   ./test.sh --clang     the same built with clang++ (build/clang)
source "$(dirname "$0")/scripts/common.sh"
install_missing

if [ "${1:-}" = "--sanitize" ]; then
    BUILD="$ROOT/build/asan"
    configure_and_build "$BUILD" Debug -DBUILD_TESTING=ON -DKRODICT_SANITIZE=ON -DKRODICT_BUILD_BENCH=OFF --
    export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1:strict_string_checks=1"
    export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
elif [ "${1:-}" = "--clang" ]; then
    BUILD="$ROOT/build/clang"
    CXX=clang++ configure_and_build "$BUILD" Debug -DBUILD_TESTING=ON -DKRODICT_BUILD_BENCH=OFF --
else
    BUILD="$ROOT/build/test"
    configure_and_build "$BUILD" RelWithDebInfo -DBUILD_TESTING=ON --
fi

cd "$BUILD"
ctest --output-on-failure --parallel "$(nproc 2>/dev/null || echo 2)"
