#!/bin/bash
# Writes the package a host developer gets, from the build of one
# architecture (built here if it is not there yet):
#   dist/qziso32-<version>-win32.zip   (i686, the product)
#   dist/qziso32-<version>-win64.zip   (x86_64, for 64-bit hosts)
# holding bin/ (qziso32.dll and the resource libraries), include/qziso32.h,
# lib/ (libqziso32.dll.a for GNU linkers, qziso32.lib for the platform's
# linker) and docs/ (README, compatibility notes, gallery, API reference).
# Then checks the zip with tools/check-package.sh.
#   package.sh [i686|x86_64]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
arch=${1:-i686}
case $arch in
  i686) bits=win32 ;;
  x86_64) bits=win64 ;;
  *) echo "usage: package.sh [i686|x86_64]" >&2; exit 2 ;;
esac
tree=$root/build/$arch
version=$(sed -n 's/^project(qziso32 VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
# The shipped languages: those the resource folder builds.
languages=$(sed -n 's/^qz_resource_library(\([A-Z][A-Z]\) .*/\1/p' "$root/res/CMakeLists.txt")

# The product alone: the library (its resource libraries come with it).
if [ ! -f "$tree/CMakeCache.txt" ]; then
  "$root/tools/build.sh" "$arch"
else
  cmake --build "$tree" --target qziso32 -j"$(nproc)"
fi

name=qziso32-$version-$bits
stage=$root/dist/$name
rm -rf "$stage" "$root/dist/$name.zip"
mkdir -p "$stage"/{bin,include,lib,docs}
cp "$tree/bin/qziso32.dll" "$stage/bin/"
for lang in $languages; do cp "$tree/bin/KE1C30$lang.DLL" "$stage/bin/"; done
cp "$root/include/qziso32.h" "$stage/include/"
cp "$tree/libqziso32.dll.a" "$tree/qziso32.lib" "$stage/lib/"
cp "$root/README.md" "$root/docs/compatibility.md" "$stage/docs/"
cp -r "$root/docs/gallery" "$stage/docs/"
"$root/tools/api-docs.sh" "$stage/docs/api" "$version"
(cd "$root/dist" && zip -qrX "$name.zip" "$name")
rm -rf "$stage"
"$root/tools/check-package.sh" "$root/dist/$name.zip" "$tree"
echo "package: dist/$name.zip"
