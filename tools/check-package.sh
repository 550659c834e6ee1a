#!/bin/bash
# Checks a package written by tools/package.sh against the build it came
# from: every file a host needs is there, nothing of the build's test
# libraries is, and the DLL's export table is the build's .def.
#   check-package.sh ZIP BUILD_TREE
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
zip=$1 tree=$2
name=$(basename "$zip" .zip)
languages=$(sed -n 's/^qz_resource_library(\([A-Z][A-Z]\) .*/\1/p' "$root/res/CMakeLists.txt")

listing=$(unzip -Z1 "$zip")
expected=(bin/qziso32.dll include/qziso32.h lib/libqziso32.dll.a lib/qziso32.lib
          docs/README.md docs/compatibility.md docs/api/index.html)
for lang in $languages; do expected+=("bin/KE1C30$lang.DLL"); done
for picture in "$root"/docs/gallery/*.png; do expected+=("docs/gallery/$(basename "$picture")"); done
status=0
for file in "${expected[@]}"; do
  grep -qxF "$name/$file" <<<"$listing" || { echo "check-package: $file is missing"; status=1; }
done
# bin/ holds the library and the shipped languages, nothing else.
extra=$(grep "^$name/bin/." <<<"$listing" | grep -vxF -f <(printf "$name/%s\n" "${expected[@]}") || true)
[ -z "$extra" ] || { echo "check-package: not for hosts: $extra"; status=1; }
[ $status = 0 ] || exit 1

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
unzip -q "$zip" "$name/bin/qziso32.dll" -d "$scratch"
objdump=$(sed -n 's/^QZ_OBJDUMP:FILEPATH=//p' "$tree/CMakeCache.txt")
"$root/tools/check-exports.sh" "$tree/qziso32.def" "$scratch/$name/bin/qziso32.dll" "${objdump:-objdump}"
cmp -s "$scratch/$name/bin/qziso32.dll" "$tree/bin/qziso32.dll" || { echo "check-package: the DLL is not the build's"; exit 1; }
echo "check-package: $(wc -l <<<"$listing") entries in $(basename "$zip")"
