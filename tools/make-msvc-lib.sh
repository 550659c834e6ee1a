#!/bin/bash
# Makes qziso32.lib, the import library in the platform linker's format, from
# the export table. On i686 a host's compiler refers to _Name@bytes for a
# __stdcall export and _Name for a __cdecl one: the byte counts come from the
# library's own objects, and the import names lose the decoration (the DLL
# exports undecorated names). C++ names ("?...") stand as they are.
#   make-msvc-lib.sh DEF LIB POINTER_SIZE NM LLVM_DLLTOOL OBJECT...
set -euo pipefail
def=$1 lib=$2 pointer=$3 nm=$4 dlltool=$5; shift 5

table=$(mktemp)
trap 'rm -f "$table"' EXIT
printf 'LIBRARY qziso32.dll\nEXPORTS\n' > "$table"
entries=$(sed -n 's/^[[:space:]]*\([^;[:space:]=][^[:space:]=]*\)\(=[^[:space:]]*\)\{0,1\}[[:space:]]*@\([0-9][0-9]*\).*/\1 \3/p' "$def")
if [ "$pointer" = 8 ]; then
  echo "$entries" | awk '{ print "    " $1 " @" $2 }' >> "$table"
  "$dlltool" -m i386:x86-64 -d "$table" -l "$lib"
else
  symbols=$("$nm" -g --defined-only "$@" | awk '{ print $3 }' | grep -E '^_[A-Za-z0-9_]+@[0-9]+$' | sort -u)
  echo "$entries" | awk -v symbols="$symbols" '
    BEGIN { n = split(symbols, s, "\n"); for (i = 1; i <= n; i++) { b = s[i]; sub(/@[0-9]+$/, "", b); at[substr(b, 2)] = substr(s[i], 2) } }
    { print "    " (($1 in at) ? at[$1] : $1) " @" $2 }' >> "$table"
  "$dlltool" -m i386 -k -d "$table" -l "$lib"
fi
