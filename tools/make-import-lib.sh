#!/bin/bash
# Makes the i686 import library for hosts. The DLL exports undecorated names,
# while a 32-bit host's compiler refers to a __stdcall function as
# _Name@bytes. This writes a .def with each name's decorated form (taken from
# the library's own objects) and lets dlltool strip the decoration from the
# imported name.
#   make-import-lib.sh DEF IMPORT_LIB NM DLLTOOL OBJECT...
set -euo pipefail
def=$1 implib=$2 nm=$3 dlltool=$4; shift 4

symbols=$("$nm" -g --defined-only "$@" | awk '{ print $3 }' | sort -u)
decorated=$(mktemp)
trap 'rm -f "$decorated"' EXIT
echo "LIBRARY qziso32.dll" > "$decorated"
echo "EXPORTS" >> "$decorated"
sed -n 's/^[[:space:]]*\([^;[:space:]][^[:space:]]*\)[[:space:]]*@\([0-9][0-9]*\).*/\1 \2/p' "$def" |
while read -r name ordinal; do
  stdcall=$(grep -m1 -E "^_${name}@[0-9]+$" <<<"$symbols" || true)
  if [ -n "$stdcall" ]; then
    echo "    ${stdcall#_} @$ordinal" >> "$decorated"
  else
    echo "    $name @$ordinal" >> "$decorated"
  fi
done
"$dlltool" -k -d "$decorated" -D qziso32.dll -l "$implib"
