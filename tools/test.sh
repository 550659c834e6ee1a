#!/bin/bash
# The test command: installs what both lanes need (tools/setup.sh and
# tools/setup-i686-lane.sh, which touch nothing when all is there), builds
# both architectures, packages the i686 product (tools/package.sh, which
# checks the zip), runs the x86_64 suite under
# 64-bit Wine on this machine, then the i686 suite under 32-bit Wine in one
# boot of an emulated machine. Both lanes always run; the status is the first
# failing lane's (the x86_64 lane's ctest status, else the i686 lane's: its
# ctest status, 124 on timeout, 125 when the emulated machine fails), else
# the package step's.
set -uo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/tools/setup.sh" || exit
"$root/tools/setup-i686-lane.sh" || exit
"$root/tools/build.sh" || exit
echo "== package (i686): the zip a host gets, its listing, exports and API reference"
"$root/tools/package.sh" i686
package=$?
echo "== x86_64 lane (64-bit Wine)"
ctest --test-dir "$root/build/x86_64" --output-on-failure -j"$(nproc)"
x64=$?
echo "== i686 lane (32-bit Wine in an emulated machine)"
"$root/tools/run-i686-suite.sh" "$root/build/i686"
i686=$?
echo "== x86_64 lane: $([ $x64 = 0 ] && echo passed || echo "FAILED ($x64)");" \
     "i686 lane: $([ $i686 = 0 ] && echo passed || echo "FAILED ($i686)");" \
     "package: $([ $package = 0 ] && echo passed || echo "FAILED ($package)")"
[ $x64 != 0 ] && exit $x64
[ $i686 != 0 ] && exit $i686
exit $package
