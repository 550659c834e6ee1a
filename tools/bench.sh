#!/bin/bash
# Runs every benchmark of the x86_64 build under 64-bit Wine and writes each
# one's figures to bench/results/<name>.txt.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/tools/build.sh" x86_64
mkdir -p "$root/bench/results"
for exe in "$root"/build/x86_64/bin/bench_*.exe; do
  [ -e "$exe" ] || continue
  name=$(basename "$exe" .exe); name=${name#bench_}
  echo "== $name"
  "$root/tools/wine-run.sh" "$exe" | tr -d '\r' | tee "$root/bench/results/$name.txt"
done
