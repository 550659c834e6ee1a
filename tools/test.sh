#!/bin/bash
# The test command: builds both architectures and runs every test, the
# x86_64 suite under 64-bit Wine on this machine.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/tools/build.sh"
echo "== x86_64 lane (64-bit Wine)"
ctest --test-dir "$root/build/x86_64" --output-on-failure -j"$(nproc)"
