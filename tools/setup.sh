#!/bin/bash
# Installs what the build and the x86_64 test lane need, from Debian packages.
# Idempotent: when everything is present it touches nothing.
set -euo pipefail

packages=(cmake make mingw-w64 g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix
          binutils-mingw-w64-i686 binutils-mingw-w64-x86-64 googletest wine wine64 ccache
          # the host's kit: the MSVC-ABI host and import library, the API
          # reference, the package
          clang lld llvm doxygen zip unzip)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "setup: installing ${missing[*]}"
  sudo=; [ "$(id -u)" = 0 ] || sudo=sudo
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
