#!/bin/bash
# The test command: installs what both lanes need (tools/setup.sh and
# tools/setup-i686-lane.sh, which touch nothing when all is there), builds
# both architectures, packages the i686 product (tools/package.sh, which
# checks the zip, its exports and the API reference), and runs the x86_64
# suite under 64-bit Wine on this machine and the i686 suite under 32-bit
# Wine in one boot of an emulated machine.
#
# The emulated lane is the long one, so it starts as soon as the i686 tree is
# built and runs beside the x86_64 build and lane; its Wine prefix, when not
# cached yet, is made while the trees build. The x86_64 lane's ctest lines come
# as they run; the i686 lane's are kept and printed whole after them. At the
# end a summary gives each phase's time and each lane's verdict.
#
# Both lanes always run; the status is the first failing lane's (the x86_64
# lane's ctest status, else the i686 lane's: its ctest status, 124 on
# timeout, 125 when the emulated machine fails), else the package step's.
#   QZ_TEST_SERIAL=1   run the i686 lane after the x86_64 lane instead
set -uo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d /tmp/qz-test.XXXXXX)
start=$(date +%s)
summary=()
lane32_pid=
prefix_pid=
# A background job that is still running is stopped with its children
# (boot.sh stops its emulated machine on TERM).
stop_job() {
  [ -n "$1" ] || return 0
  pkill -TERM -P "$1" 2>/dev/null
  kill "$1" 2>/dev/null
}
cleanup() {
  stop_job "$lane32_pid"
  stop_job "$prefix_pid"
  rm -rf "$work"
}
trap cleanup EXIT

# "name  seconds" for the summary, and one line as the phase ends.
note() {
  summary+=("$(printf '  %-30s %5d s' "$1" "$2")")
  printf '== %s: %d s\n' "$1" "$2"
}
# Runs a phase, times it and returns its status.
phase() {
  local name=$1 t0 rc
  shift
  t0=$(date +%s)
  "$@"
  rc=$?
  note "$name" $(($(date +%s) - t0))
  return $rc
}
print_summary() {
  echo "== phase times"
  printf '%s\n' "${summary[@]}"
  printf '  %-30s %5d s\n' "whole run" $(($(date +%s) - start))
}
fail_build() {
  echo "== build failed ($1)"
  print_summary
  exit "$1"
}

phase "installs (x86_64)" "$root/tools/setup.sh" || exit
phase "installs (i686 lane)" "$root/tools/setup-i686-lane.sh" || exit

# The i686 lane's Wine prefix, when missing, is made on one emulated CPU
# while the trees build (the lane would otherwise make it first).
if [ "${QZ_TEST_SERIAL:-0}" != 1 ]; then
  (
    t0=$(date +%s)
    QZ_RUN32_PREFIX_ONLY=1 QZ_RUN32_SMP=1 "$root/tools/run32/boot.sh" -- true \
      >"$work/prefix.log" 2>&1
    echo "$? $(($(date +%s) - t0))" >"$work/prefix.done"
  ) &
  prefix_pid=$!
fi

phase "build i686" "$root/tools/build.sh" i686 || fail_build $?

run_lane32() {
  "$root/tools/run-i686-suite.sh" "$root/build/i686"
}
if [ "${QZ_TEST_SERIAL:-0}" != 1 ]; then
  echo "== i686 lane started in the background; its lines follow the x86_64 lane's"
  (
    while [ ! -f "$work/prefix.done" ]; do sleep 1; done
    t0=$(date +%s)
    run_lane32 >"$work/lane32.log" 2>&1
    echo "$? $(($(date +%s) - t0))" >"$work/lane32.done"
  ) &
  lane32_pid=$!
fi

phase "build x86_64" "$root/tools/build.sh" x86_64 || fail_build $?

echo "== package (i686): the zip a host gets, its listing, exports and API reference"
phase "package" "$root/tools/package.sh" i686
package=$?

echo "== x86_64 lane (64-bit Wine)"
phase "x86_64 lane" ctest --test-dir "$root/build/x86_64" --output-on-failure -j"$(nproc)"
x64=$?

echo "== i686 lane (32-bit Wine in an emulated machine)"
if [ "${QZ_TEST_SERIAL:-0}" = 1 ]; then
  phase "i686 lane" run_lane32
  i686=$?
else
  # A line every two minutes while the lane is still running, so a silent
  # wait is not taken for a hang.
  waited=0
  while kill -0 "$lane32_pid" 2>/dev/null; do
    sleep 5
    waited=$((waited + 5))
    [ $((waited % 120)) = 0 ] &&
      echo "== i686 lane still running: $(grep -c 'Test *#' "$work/lane32.log" 2>/dev/null) programs done"
  done
  wait "$lane32_pid"
  lane32_pid=
  cat "$work/lane32.log"
  read -r prefix_rc prefix_s <"$work/prefix.done"
  [ "$prefix_s" -gt 1 ] && note "i686 prefix (beside builds)" "$prefix_s"
  [ "$prefix_rc" = 0 ] || sed 's/^/prefix: /' "$work/prefix.log"
  read -r i686 lane32_s <"$work/lane32.done"
  note "i686 lane (beside x86_64)" "$lane32_s"
fi

print_summary
echo "== x86_64 lane: $([ $x64 = 0 ] && echo passed || echo "FAILED ($x64)");" \
     "i686 lane: $([ $i686 = 0 ] && echo passed || echo "FAILED ($i686)");" \
     "package: $([ $package = 0 ] && echo passed || echo "FAILED ($package)")"
[ $x64 != 0 ] && exit $x64
[ $i686 != 0 ] && exit $i686
exit $package
