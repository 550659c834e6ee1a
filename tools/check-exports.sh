#!/bin/bash
# Checks a built DLL's export table against the .def: the same names at the
# same ordinals, and nothing else. DEF is the table as the build's linker saw
# it (preprocessed for the architecture); "Name=internal" exports Name.
#   check-exports.sh DEF DLL [OBJDUMP]
set -euo pipefail
def=$1 dll=$2 objdump=${3:-objdump}

expected=$(sed -n 's/^[[:space:]]*\([^;[:space:]=][^[:space:]=]*\)\(=[^[:space:]]*\)\{0,1\}[[:space:]]*@\([0-9][0-9]*\).*/\3 \1/p' "$def" | sort -n)
# objdump lists the name table as "[index] name", the index counted from the
# table's ordinal base.
actual=$("$objdump" -p "$dll" | awk '
  /^Ordinal Base/ { base = $3 }
  /\[Ordinal\/Name Pointer\] Table/ { on = 1; next }
  on && /^[[:space:]]*$/ { on = 0 }
  on { gsub(/[][]/, " "); print $1 + base, $2 }' | sort -n)

if [ "$expected" != "$actual" ]; then
  echo "export table of $dll differs from $def:"
  diff <(echo "$expected") <(echo "$actual") || true
  exit 1
fi
echo "exports: $(echo "$actual" | wc -l) names at their ordinals in $(basename "$dll")"
