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
# CTEST_ARGS are added to ctest's command line (e.g. -R Pattern, -j1).
#
# Environment: CTEST_PARALLEL_LEVEL (default: the guest's CPUs),
# QZ_I686_TEST_TIMEOUT (seconds for a test without a TIMEOUT property of its
# own, default 300), and the QZ_RUN32_* knobs of tools/run32/boot.sh
# (QZ_RUN32_TIMEOUT: seconds for the whole run, default 2400).
#
# Exit status: ctest's own (0 all passed, non-zero otherwise);
#   124  the emulated machine ran out of time (QZ_RUN32_TIMEOUT, default 2400 s)
#   125  the emulated machine failed, or the lane is not set up
#   2    BUILD_DIR is not a configured build directory
# All are explained on stderr.  One-time setup: tools/setup-i686-lane.sh.
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

# Tests run in parallel, one per guest CPU, like the x86_64 lane's -j$(nproc);
# CTEST_PARALLEL_LEVEL=1 (or -- -j1) runs them one at a time.
export CTEST_PARALLEL_LEVEL=${CTEST_PARALLEL_LEVEL:-${QZ_RUN32_SMP:-$(nproc)}}

# A test without a TIMEOUT property of its own gets this many seconds, so that
# one hung test fails by name and the rest still run, rather than the whole
# machine running out of time (QZ_RUN32_TIMEOUT) with nothing said.
test_timeout=${QZ_I686_TEST_TIMEOUT:-300}

# ctest is the host's binary, seen by the guest through the shared root.
exec "$repo/tools/run32/boot.sh" -w "$build" -C "$build" -- \
  ctest --test-dir "$build" --output-on-failure --no-tests=error \
    --timeout "$test_timeout" "$@"
