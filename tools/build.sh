#!/bin/bash
# Configures and builds the library, its resource libraries, the tests and
# the demo for both architectures: build/x86_64 and build/i686.
#   build.sh [ARCH...]     default: x86_64 i686
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
arches=("$@"); [ ${#arches[@]} -gt 0 ] || arches=(x86_64 i686)
# ccache, when installed, lets the two trees and other clones of the project
# share compiled objects: paths below the clone are kept relative.
launcher=()
if command -v ccache >/dev/null; then
  export CCACHE_BASEDIR=$root
  # The units start from a precompiled header: ccache may take the object
  # from its cache when the header's build and the unit's agree.
  export CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
  launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi
for arch in "${arches[@]}"; do
  tree=$root/build/$arch
  if [ ! -f "$tree/CMakeCache.txt" ]; then
    cmake -S "$root" -B "$tree" -DCMAKE_BUILD_TYPE=Release \
          -DCMAKE_TOOLCHAIN_FILE="$root/cmake/toolchain-$arch.cmake" "${launcher[@]}" >/dev/null
  fi
  cmake --build "$tree" -j"$(nproc)"
done
