#!/bin/bash
# Makes the i686 import library for hosts. The DLL exports undecorated names,
# while a 32-bit host's compiler refers to a __stdcall function as
# _Name@bytes. This writes a .def with each name's decorated form (taken from
# the library's own objects) and lets dlltool strip the decoration from the
# imported name. A C++ name (beginning with "?") is a symbol as it stands,
# without the underscore that dlltool puts before every i686 symbol: the
# symbols of such names are renamed afterwards, as a host's compiler refers
# to them.
#   make-import-lib.sh DEF IMPORT_LIB NM DLLTOOL OBJCOPY OBJECT...
set -euo pipefail
def=$1 implib=$2 nm=$3 dlltool=$4 objcopy=$5; shift 5

symbols=$("$nm" -g --defined-only "$@" | awk '{ print $3 }' | sort -u)
decorated=$(mktemp)
trap 'rm -f "$decorated"' EXIT
echo "LIBRARY qziso32.dll" > "$decorated"
echo "EXPORTS" >> "$decorated"
sed -n 's/^[[:space:]]*\([^;[:space:]=][^[:space:]=]*\)\(=[^[:space:]]*\)\{0,1\}[[:space:]]*@\([0-9][0-9]*\).*/\1 \3/p' "$def" |
while read -r name ordinal; do
  stdcall=$(grep -m1 -E "^_${name}@[0-9]+$" <<<"$symbols" || true)
  if [ -n "$stdcall" ]; then
    echo "    ${stdcall#_} @$ordinal" >> "$decorated"
  else
    echo "    $name @$ordinal" >> "$decorated"
  fi
done
"$dlltool" -k -d "$decorated" -D qziso32.dll -l "$implib"

renames=()
while read -r name; do
  renames+=(--redefine-sym "_$name=$name" --redefine-sym "__imp__$name=__imp_$name")
done < <(sed -n 's/^[[:space:]]*\(?[^[:space:]=]*\).*/\1/p' "$decorated")
[ ${#renames[@]} -eq 0 ] || "$objcopy" "${renames[@]}" "$implib"
