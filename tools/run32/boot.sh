#!/bin/bash
# boot.sh - run one command under 32-bit Wine, inside a throw-away
# qemu-system-x86_64 guest (TCG software emulation: this host cannot execute
# i386 code, the guest's stock Debian kernel can).
#
#   boot.sh [-w DIR]... [-C DIR] -- COMMAND [ARGS...]
#
#   -w DIR   share DIR read-write into the guest, at the same path (repeatable);
#            everything else is the host's root filesystem, read-only
#            underneath a throw-away tmpfs overlay
#   -C DIR   working directory for COMMAND (default: the first -w DIR, else /)
#
# COMMAND runs as root in the guest with
#   WINEARCH=win32, WINEPREFIX=<a ready 32-bit prefix with the null graphics
#   driver>, QZ_WINE=/usr/lib/wine/wine (the 32-bit loader),
# a wineserver already running and the prefix's services started.  Its stdout
# and stderr arrive on ours as it runs.
#
# Exit status: COMMAND's own; 124 when the time limit ran out; 125 when the
# emulated machine failed (no result came back).  Both say why on stderr.
#
# Environment:
#   QZ_RUN32_TIMEOUT  seconds for the whole boot (default 2400)
#   QZ_RUN32_CACHE    initramfs + Wine prefix cache
#                     (default ${XDG_CACHE_HOME:-$HOME/.cache}/qziso32/run32)
#   QZ_RUN32_KERNEL   guest kernel (default: newest /boot/vmlinuz-*)
#   QZ_RUN32_MEM      guest memory in MiB (default 4096)
#   QZ_RUN32_SMP      guest CPUs (default: host's)
#   QZ_RUN32_PASSENV  names (glob patterns) of host variables handed to COMMAND
#                     (default "WINEDEBUG WINEDLLOVERRIDES GTEST_* CTEST_*")
#   QZ_RUN32_APPEND   extra guest kernel arguments (e.g. loglevel=7 to debug a boot)
#   QZ_RUN32_VERBOSE=1  after the run: guest console, boot timings, host wall time
#   QZ_RUN32_KEEP=1     keep the per-run directory (job.env, logs, console)
#   QZ_RUN32_PREFIX_ONLY=1  return at once when the Wine prefix exists; else boot,
#                       make it and run COMMAND (tools/test.sh gives `true`)
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
prog=run32

die() { echo "$prog: $*" >&2; exit 125; }
usage() { echo "usage: boot.sh [-w DIR]... [-C DIR] -- COMMAND [ARGS...]" >&2; exit 125; }

shares=()
workdir=
while [ $# -gt 0 ]; do
  case $1 in
    -w) [ $# -ge 2 ] || usage; [ -d "$2" ] || die "no directory $2"
        shares+=("$(cd "$2" && pwd -P)"); shift 2 ;;
    -C) [ $# -ge 2 ] || usage; [ -d "$2" ] || die "no directory $2"
        workdir=$(cd "$2" && pwd -P); shift 2 ;;
    --) shift; break ;;
    *) usage ;;
  esac
done
[ $# -ge 1 ] || usage
[ -n "$workdir" ] || workdir=${shares[0]:-/}

timeout_s=${QZ_RUN32_TIMEOUT:-2400}
mem=${QZ_RUN32_MEM:-4096}
smp=${QZ_RUN32_SMP:-$(nproc)}
if [ -n "${XDG_CACHE_HOME:-}" ] || [ -n "${HOME:-}" ]; then
  cache=${QZ_RUN32_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/qziso32/run32}
else
  cache=${QZ_RUN32_CACHE:-/var/cache/qziso32/run32}
fi
passenv=${QZ_RUN32_PASSENV:-WINEDEBUG WINEDLLOVERRIDES GTEST_* CTEST_*}
[[ $timeout_s =~ ^[0-9]+$ ]] || die "QZ_RUN32_TIMEOUT must be a number of seconds"

# The guest runs as root on the host's files: Wine in the guest insists on
# owning its prefix, and the 9p export acts with the host user's rights.
[ "$(id -u)" = 0 ] || die "must run as root (Wine's prefix must belong to the guest's root)"
command -v qemu-system-x86_64 >/dev/null || die "qemu-system-x86_64 missing: run tools/setup-i686-lane.sh"
[ -x /usr/lib/wine/wine ] || die "32-bit Wine missing: run tools/setup-i686-lane.sh"

kernel=${QZ_RUN32_KERNEL:-$(printf '%s\n' /boot/vmlinuz-* | sort -V | tail -n 1)}
[ -r "$kernel" ] || die "no guest kernel: run tools/setup-i686-lane.sh"
case $kernel in */vmlinuz-*) ;; *) die "the guest kernel must be a vmlinuz-VERSION file: $kernel" ;; esac
kver=${kernel##*/vmlinuz-}
[ -d "/lib/modules/$kver" ] || die "no modules for kernel $kver"

mkdir -p "$cache"
cache=$(cd "$cache" && pwd -P)

# initramfs, keyed by kernel and by the builder's own contents.
builder_sum=$(sha256sum "$here/mkinitramfs.sh" | cut -c1-12)
initrd=$cache/initramfs-$kver-$builder_sum.cpio.gz
if [ ! -s "$initrd" ]; then
  "$here/mkinitramfs.sh" "$kver" "$initrd" || die "cannot build the initramfs"
  find "$cache" -maxdepth 1 -name 'initramfs-*.cpio.gz' ! -path "$initrd" -delete
fi

# Wine prefix: an ext4 image, keyed by the Wine build and by how guest.sh
# makes it (bump prefix_recipe when that changes).  Missing, it is made in this
# boot on a blank image, which is kept only if the guest says it is complete.
prefix_recipe=3
wine_version=$(dpkg-query -W -f='${Version}' libwine:i386 2>/dev/null) ||
  die "libwine:i386 not installed: run tools/setup-i686-lane.sh"
image=$cache/prefix-win32-${wine_version//[^A-Za-z0-9.+-]/_}-r$prefix_recipe.ext4
prefix_mode="use"
if [ ! -s "$image" ]; then
  prefix_mode="make"
  # Prefixes of other Wine builds or recipes are of no further use, nor are
  # half-made images that no run has touched for hours.
  find "$cache" -maxdepth 1 -name 'prefix-win32-*' ! -name '*.part.*' ! -path "$image" \
    -exec rm -rf {} +
  find "$cache" -maxdepth 1 -name 'prefix-win32-*.part.*' -mmin +120 -delete
  echo "$prog: no Wine prefix for $wine_version yet; making one in this boot (about a minute)" >&2
fi
# QZ_RUN32_PREFIX_ONLY=1: only make sure the prefix exists (tools/test.sh makes
# it while the trees build); with one there already, nothing boots.
[ "${QZ_RUN32_PREFIX_ONLY:-0}" = 1 ] && [ "$prefix_mode" = use ] && exit 0

run=$(mktemp -d /tmp/qz-run32.XXXXXX)
disk_file=
qemu_pid=
readers=()
# shellcheck disable=SC2317  # reached through the traps below
cleanup() {
  set +e   # a process already gone must not cut the cleanup short
  [ -n "$qemu_pid" ] && kill "$qemu_pid" 2>/dev/null
  [ ${#readers[@]} -gt 0 ] && kill "${readers[@]}" 2>/dev/null
  if [ "${QZ_RUN32_KEEP:-0}" = 1 ]; then echo "$prog: kept $run" >&2; else rm -rf "$run"; fi
  [ "$prefix_mode" = make ] && [ -n "$disk_file" ] && rm -f "$disk_file"   # not complete
}
trap cleanup EXIT
trap 'echo "$prog: interrupted" >&2; exit 130' INT
trap 'echo "$prog: terminated" >&2; exit 143' TERM

# QEMU's option syntax doubles commas inside values.
qarg() { printf '%s' "${1//,/,,}"; }

cp "$here/guest.sh" "$run/guest.sh"
fsdevs=(-fsdev "local,id=hostroot,path=/,security_model=none,readonly=on,multidevs=remap"
        -device "virtio-9p-pci,fsdev=hostroot,mount_tag=hostroot"
        -fsdev "local,id=qzjob,path=$(qarg "$run"),security_model=none"
        -device "virtio-9p-pci,fsdev=qzjob,mount_tag=qzjob")
{
  echo "QZ_MOUNTS=()"
  n=0
  for dir in "${shares[@]}"; do
    tag=qzshare$n; n=$((n + 1))
    fsdevs+=(-fsdev "local,id=$tag,path=$(qarg "$dir"),security_model=none"
             -device "virtio-9p-pci,fsdev=$tag,mount_tag=$tag")
    printf 'QZ_MOUNTS+=(%q %q)\n' "$tag" "$dir"
  done
  printf 'QZ_PREFIX_MODE=%s\nQZ_WORKDIR=%q\n' "$prefix_mode" "$workdir"
  printf 'QZ_CMD=('; printf '%q ' "$@"; printf ')\n'
  # Hand over the chosen host variables.
  for name in $(compgen -e); do
    for pat in $passenv; do
      # shellcheck disable=SC2053  # $pat is a glob on purpose
      [[ $name == $pat ]] && { printf 'export %s=%q\n' "$name" "${!name}"; break; }
    done
  done
} > "$run/job.env"
if [ "$prefix_mode" = make ]; then
  disk_file=$image.part.$$
  truncate -s 2G "$disk_file"   # sparse; the prefix takes ~600 MB of it
  disk_opts=
else
  disk_file=$image
  disk_opts=,readonly=on
fi
# shellcheck disable=SC2054  # commas belong to QEMU's option syntax
disk=(-drive "file=$(qarg "$disk_file"),format=raw,if=none,id=qzprefix$disk_opts"
      -device virtio-blk-pci,drive=qzprefix,serial=qzprefix)

# The command's stdout and stderr: two virtio serial ports, each written by
# QEMU into a FIFO that a reader here copies to our own stream as it comes.
mkfifo "$run/stdout.fifo" "$run/stderr.fifo"
cat "$run/stdout.fifo" &
readers+=($!)
cat "$run/stderr.fifo" >&2 &
readers+=($!)

t0=$(date +%s.%N)
# -cpu max,-smap: with SMAP the guest kernel faults ("supervisor read access in
#   user mode") at an IRET in Wine's 32-bit code, and every Wine process dies.
# -M pc: microvm boots ~1 s faster but sometimes hangs before userland.
# -no-reboot + panic=-1: a guest that crashes ends QEMU instead of rebooting.
timeout -k 10 "$timeout_s" qemu-system-x86_64 \
  -nodefaults -no-user-config -M pc -accel tcg,thread=multi \
  -cpu max,-smap -smp "$smp" -m "$mem" \
  -display none -no-reboot -net none \
  -serial "file:$(qarg "$run/console.log")" \
  -kernel "$kernel" -initrd "$initrd" \
  -append "console=ttyS0 quiet loglevel=3 panic=-1 mitigations=off ${QZ_RUN32_APPEND:-}" \
  "${fsdevs[@]}" "${disk[@]}" \
  -device virtio-serial-pci \
  -chardev "file,id=qzout,path=$(qarg "$run/stdout.fifo")" \
  -device virtserialport,chardev=qzout,name=qz.stdout \
  -chardev "file,id=qzerr,path=$(qarg "$run/stderr.fifo")" \
  -device virtserialport,chardev=qzerr,name=qz.stderr \
  < /dev/null > "$run/qemu.log" 2>&1 &
qemu_pid=$!
qemu_rc=0
wait "$qemu_pid" || qemu_rc=$?
qemu_pid=
t1=$(date +%s.%N)

# A reader whose FIFO QEMU never opened is still waiting in open(): opening
# the FIFO read-write here releases it, and it then sees end-of-file.
for f in "$run/stdout.fifo" "$run/stderr.fifo"; do : 1<> "$f"; done
wait "${readers[@]}" 2>/dev/null || true
readers=()

if [ "$prefix_mode" = make ] && [ -f "$run/prefix-made" ]; then
  mv -f "$disk_file" "$image" || echo "$prog: warning: could not keep the new prefix image" >&2
fi

if [ "${QZ_RUN32_VERBOSE:-0}" = 1 ]; then
  {
    echo "--- $prog: guest console"; cat "$run/console.log" "$run/qemu.log" 2>/dev/null
    echo "--- $prog: guest uptime stamps (s)"; cat "$run/times" 2>/dev/null
    [ -f "$run/prefix.log" ] && { echo "--- $prog: prefix.log"; cat "$run/prefix.log"; }
    awk -v a="$t0" -v b="$t1" 'BEGIN { printf "--- %s: host wall %.1f s\n", "run32", b - a }'
  } >&2
fi

elapsed=$(awk -v a="$t0" -v b="$t1" 'BEGIN { printf "%d", b - a }')
if [ ! -f "$run/rc" ] && { [ "$qemu_rc" = 124 ] || [ "$elapsed" -ge "$timeout_s" ]; }; then
  echo "$prog: TIMEOUT: the guest did not finish within ${timeout_s}s (QZ_RUN32_TIMEOUT)" >&2
  exit 124
fi
if [ ! -f "$run/rc" ]; then
  echo "$prog: INFRASTRUCTURE FAILURE: the guest ended without a result (qemu status $qemu_rc)" >&2
  [ -f "$run/error" ] && sed "s/^/$prog: guest: /" "$run/error" >&2
  [ -f "$run/prefix.log" ] && { echo "$prog: prefix.log:" >&2; tail -n 20 "$run/prefix.log" >&2; }
  echo "$prog: last lines of the guest console and QEMU:" >&2
  tail -n 30 "$run/console.log" "$run/qemu.log" >&2 2>/dev/null || true
  exit 125
fi
exit "$(cat "$run/rc")"
