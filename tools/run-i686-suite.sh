#!/bin/bash
# run-i686-suite.sh - run the i686 build's test suite under 32-bit Wine.
#
#   tools/run-i686-suite.sh [BUILD_DIR] [-- CTEST_ARGS...]
#
# BUILD_DIR defaults to build/i686 under the repository root.  This host cannot
# run 32-bit x86 code, so the whole suite runs in ONE boot of an emulated
# machine (tools/run32/boot.sh): ctest there runs every test through the
# project's CMAKE_CROSSCOMPILING_EMULATOR (tools/wine-run.sh) with
#   QZ_WINE=/usr/lib/wine/wine   the 32-bit loader
#   WINEPREFIX=<cached win32 prefix, null graphics driver>   WINEARCH=win32
# and ctest's output comes out on stdout as it runs.  BUILD_DIR is shared
# read-write, so Testing/ logs stay; everything else the guest writes is lost.
#
# CTEST_ARGS are added to ctest's command line (e.g. -R Pattern, -j2).
#
# Exit status: ctest's own (0 all passed, non-zero otherwise);
#   124  the emulated machine ran out of time (QZ_RUN32_TIMEOUT, default 1200 s)
#   125  the emulated machine failed, or the lane is not set up
# Both are explained on stderr.  One-time setup: tools/setup-i686-lane.sh.
# Further knobs (cache, memory, CPUs, variables handed to the tests): see
# tools/run32/boot.sh.
set -euo pipefail

repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

build=$repo/build/i686
if [ $# -gt 0 ] && [ "$1" != -- ]; then
  build=$1
  shift
fi
if [ $# -gt 0 ]; then
  [ "$1" = -- ] || { echo "usage: run-i686-suite.sh [BUILD_DIR] [-- CTEST_ARGS...]" >&2; exit 2; }
  shift
fi

[ -f "$build/CTestTestfile.cmake" ] || {
  echo "run-i686-suite: $build is not a configured build directory (no CTestTestfile.cmake)" >&2
  exit 2
}
build=$(cd "$build" && pwd -P)

# ctest is the host's binary, seen by the guest through the shared root.
exec "$repo/tools/run32/boot.sh" -w "$build" -C "$build" -- \
  ctest --test-dir "$build" --output-on-failure --no-tests=error "$@"
