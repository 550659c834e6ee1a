#!/bin/bash
# Generates the API reference from include/qziso32.h with Doxygen, as HTML in
# OUT_DIR, and checks it: no warning (an undocumented declaration is one),
# and every export of the .def present in it.
#   api-docs.sh OUT_DIR [VERSION]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
out=$1
version=${2:-$(sed -n 's/^project(qziso32 VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")}
command -v doxygen >/dev/null || { echo "api-docs: doxygen is missing (tools/setup.sh installs it)" >&2; exit 2; }

rm -rf "$out"
mkdir -p "$out"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
(cd "$root" && QZ_API_HEADER=include/qziso32.h QZ_API_OUT="$out" QZ_API_LOG="$log" \
   QZ_VERSION="$version" doxygen docs/Doxyfile)
if [ -s "$log" ]; then
  echo "api-docs: Doxygen warned:"
  cat "$log"
  exit 1
fi

# Every exported name appears in the reference (the C++ member as Clear).
missing=()
for name in $(sed -n 's/^[[:space:]]*\([A-Za-z_][A-Za-z0-9_]*\)[[:space:]]*@[0-9].*/\1/p' "$root/core/qziso32.def") Clear; do
  grep -rqw -- "$name" "$out"/*.html || missing+=("$name")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "api-docs: exports missing from the reference: ${missing[*]}"
  exit 1
fi
echo "api-docs: $(ls "$out"/*.html | wc -l) pages in $out, every export documented"
