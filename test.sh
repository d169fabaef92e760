#!/usr/bin/env bash
# Sets up, builds and runs all tests.
# Usage: ./test.sh [PRESET] [CTEST OPTION...]     presets: release, fast, debug, asan, tsan; default release
#        ./test.sh --concurrent [CTEST OPTION...]  under the thread sanitizer, the tests of what several threads work at
#        ./test.sh --windows [CTEST OPTION...]    the plug-in as a Windows DLL, its tests under Wine, then a worker of this
#                                                 system against the DLL in a console host
set -euo pipefail
cd "$(dirname "$0")"

build() {
  [ -f "build/$1/build.ninja" ] || cmake --preset "$1"
  cmake --build --preset "$1" "${@:2}"
}

if [ "${1:-}" = --windows ]; then
  shift
  ./setup.sh packages.txt packages-windows.txt
  build windows
  cmake/check-windows-dlls build/windows/bin
  trap 'cmake/run-under-wine --stop' EXIT
  cmake/run-under-wine --start
  ctest --preset windows "$@"
  build release --target test_console_host
  echo "A worker of this system against the DLL"
  CORVANTIS_CONSOLE_HOST="$PWD/cmake/run-under-wine $PWD/build/windows/bin/console-host.exe" \
    CORVANTIS_CONSOLE_PLUGIN="$PWD/build/windows/bin/corvantis.dll" build/release/tests/test_console_host --gtest_brief=1
  exit
fi

if [ "${1:-}" = --concurrent ]; then
  shift
  ./setup.sh
  build tsan --target concurrent_tests
  ctest --preset tsan -L concurrent "$@"
  exit
fi

preset=release
if [ $# -gt 0 ] && [[ "$1" != -* ]]; then preset=$1; shift; fi

./setup.sh
build "$preset"
ctest --preset "$preset" "$@"
