# Shared by run.sh and test.sh: install what is missing, then configure and build one build tree.
set -euo pipefail

ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
# Paths below the checkout are hashed relative to it, so clones and worktrees share ccache hits.
export CCACHE_BASEDIR="${CCACHE_BASEDIR:-$ROOT}"
PACKAGES=(g++ gcc cmake ninja-build ccache qtbase5-dev libqt5sql5-sqlite libsqlite3-dev libbenchmark-dev libexpat1-dev python3 doxygen)
# The documentation package: xmllint validates it; the DITA Open Toolkit renders it, on Ant with
# Xalan (the JDK's own XSLT compiler fails on the toolkit's style sheets) and a Java runtime.
PACKAGES+=(libxml2-utils dita-ot ant libxalan2-java default-jre-headless)
# clang and its runtimes: the clang build (./test.sh --clang) and the fuzz targets (fuzz/run.sh).
PACKAGES+=(clang libclang-rt-14-dev)

install_missing() {
    local missing=()
    for p in "${PACKAGES[@]}"; do
        dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "== installing: ${missing[*]}"
    local sudo=""
    [ "$(id -u)" -ne 0 ] && sudo="sudo"
    export DEBIAN_FRONTEND=noninteractive
    $sudo apt-get update -qq
    $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

# configure_and_build BUILD_DIR BUILD_TYPE [cmake args...] -- [targets...]
configure_and_build() {
    local dir="$1" type="$2"; shift 2
    local args=() targets=()
    while [ $# -gt 0 ] && [ "$1" != "--" ]; do args+=("$1"); shift; done
    [ $# -gt 0 ] && shift
    targets=("$@")
    local launcher=()
    command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    if [ ! -f "$dir/build.ninja" ]; then
        cmake -S "$ROOT" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE="$type" "${launcher[@]}" "${args[@]}" >/dev/null
    fi
    local jobs
    jobs="$(nproc 2>/dev/null || echo 2)"
    if [ ${#targets[@]} -gt 0 ]; then
        cmake --build "$dir" --parallel "$jobs" --target "${targets[@]}"
    else
        cmake --build "$dir" --parallel "$jobs"
    fi
}
