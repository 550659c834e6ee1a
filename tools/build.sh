#!/bin/bash
# Configures and builds the library, its resource libraries, the tests and
# the demo for both architectures: build/x86_64 and build/i686.
#   build.sh [ARCH...]     default: x86_64 i686
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
arches=("$@"); [ ${#arches[@]} -gt 0 ] || arches=(x86_64 i686)
for arch in "${arches[@]}"; do
  tree=$root/build/$arch
  if [ ! -f "$tree/CMakeCache.txt" ]; then
    cmake -S "$root" -B "$tree" -DCMAKE_BUILD_TYPE=Release \
          -DCMAKE_TOOLCHAIN_FILE="$root/cmake/toolchain-$arch.cmake" >/dev/null
  fi
  cmake --build "$tree" -j"$(nproc)"
done
