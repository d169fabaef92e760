#!/usr/bin/env bash
# Sets up, builds and runs all tests.
# Usage: ./test.sh [PRESET] [CTEST OPTION...]   (presets: release, debug, asan, tsan; default release)
set -euo pipefail
cd "$(dirname "$0")"

preset=release
if [ $# -gt 0 ] && [[ "$1" != -* ]]; then preset=$1; shift; fi

./setup.sh
[ -f "build/$preset/build.ninja" ] || cmake --preset "$preset"
cmake --build --preset "$preset"
ctest --preset "$preset" "$@"
