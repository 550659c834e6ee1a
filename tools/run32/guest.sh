#!/bin/bash
# guest.sh - PID 1 of the 32-bit lane's guest, after the initramfs has switched
# into the overlay of the host's root.  boot.sh copies this file into the job
# share (/run/qz) next to job.env, which says what to run:
#
#   QZ_MOUNTS     array of "tag path" pairs: read-write host directories to
#                 mount at their host paths
#   QZ_PREFIX_MODE  "use": the disk with serial qzprefix holds a ready Wine
#                   prefix; "make": the disk is blank, make the prefix on it
#   QZ_WORKDIR    where QZ_CMD starts
#   QZ_CMD        the command (array), with the exports of job.env around it
#
# Results go back through the job share: rc (QZ_CMD's exit status), times
# (guest uptime stamps), prefix.log and prefix-made (when making the prefix),
# error (why nothing ran).  QZ_CMD's stdout and stderr go straight to the host
# through two virtio serial ports.
#
# No `set -e` (nor -u): whatever happens, this script must reach the power-off.
# "A && B || fail" is meant as it reads: fail when any step fails.
# shellcheck disable=SC2015
set -o pipefail

job=/run/qz
export PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin
export HOME=/root USER=root LOGNAME=root LANG=C.UTF-8 TERM=dumb

wine=/usr/lib/wine/wine               # the 32-bit loader
wineserver=/usr/lib/wine/wineserver

stamp() { echo "$1 $(cut -d' ' -f1 /proc/uptime)" >> "$job/times"; }

power_off() {
  [ -x "$wineserver" ] && "$wineserver" -k >/dev/null 2>&1
  sync
  echo o > /proc/sysrq-trigger
  sleep 60
}

fail() {
  echo "$*" >> "$job/error"
  power_off
}

stamp init

# The rest of the system mounts a normal Linux userland expects.
mkdir -p /dev/pts /dev/shm
ln -sfn /proc/self/fd /dev/fd
ln -sfn /proc/self/fd/0 /dev/stdin
ln -sfn /proc/self/fd/1 /dev/stdout
ln -sfn /proc/self/fd/2 /dev/stderr
mount -t devpts -o gid=5,mode=620 devpts /dev/pts
mount -t tmpfs -o mode=1777 shm /dev/shm

# shellcheck source=/dev/null
. "$job/job.env" || fail "cannot read job.env"

# cache=loose, not cache=mmap: with mmap caching, pages of an executable that
# Wine maps from the share sometimes cannot be faulted in, and the program dies
# with a page fault on its first touch of them.  Only this guest writes to the
# shares while it runs, so the lack of coherence of loose caching is harmless;
# the writes reach the host at the latest at umount.
p9=trans=virtio,version=9p2000.L,msize=512000,cache=loose
for ((i = 0; i < ${#QZ_MOUNTS[@]}; i += 2)); do
  tag=${QZ_MOUNTS[i]} dir=${QZ_MOUNTS[i + 1]}
  mkdir -p "$dir" && mount -t 9p -o "$p9" "$tag" "$dir" || fail "cannot mount $dir ($tag)"
done

# The command's output streams: virtio serial ports named by boot.sh.
port() {
  local n
  for n in /sys/class/virtio-ports/*/name; do
    [ "$(cat "$n" 2>/dev/null)" = "$1" ] && { echo "/dev/$(basename "$(dirname "$n")")"; return; }
  done
  return 1
}
out=$(port qz.stdout) && err=$(port qz.stderr) || fail "no virtio output ports"

# Files of the host's own Wine sessions seen through the overlay; a server
# socket there would never answer.
rm -rf /tmp/.wine-* 2>/dev/null

export WINEARCH=win32
[ -x "$wine" ] || fail "no 32-bit Wine loader at $wine"

# The Wine prefix lives on a disk of its own: an ext4 image in boot.sh's
# cache, attached read-only, under an overlay whose upper layer is a tmpfs, so
# the image itself never changes.  (Reading the prefix from a block device is
# much faster here than reading it over 9p: a suite ran in 50 s instead of 80.)
# With QZ_PREFIX_MODE=make the disk is blank and writable, and we make the
# prefix on it first.
modprobe -a virtio_blk ext4 || fail "cannot load the disk modules"
disk=
for _ in $(seq 50); do
  for s in /sys/block/vd*/serial; do
    [ "$(cat "$s" 2>/dev/null)" = qzprefix ] && disk=/dev/$(basename "$(dirname "$s")")
  done
  [ -n "$disk" ] && [ -b "$disk" ] && break
  sleep 0.1
done
[ -b "$disk" ] || fail "no prefix disk"

pfx=/run/qz-prefix
mkdir -p "$pfx" && mount -t tmpfs -o mode=0755 qz-prefix "$pfx" &&
  mkdir "$pfx/disk" "$pfx/upper" "$pfx/work" "$pfx/wine" || fail "cannot set up $pfx"

if [ "$QZ_PREFIX_MODE" = make ]; then
  # Settings: the null graphics driver (no display here), and no crash dialog:
  # a crashing test gets winedbg's backtrace on stderr and ends, instead of
  # waiting for a click on a window nobody can see.
  # Changing these?  Bump prefix_recipe in boot.sh so cached prefixes are remade.
  mkfs.ext4 -q -F -O ^has_journal -L qzprefix "$disk" &&
    mount -t ext4 "$disk" "$pfx/disk" && mkdir "$pfx/disk/prefix" ||
    fail "cannot format the prefix disk"
  # On a heavily loaded host the emulated machine can be slow enough that
  # the loader's wait for the first wineboot times out and the command fails,
  # while wineboot itself goes on filling the prefix in the background. So a
  # failure is followed by waiting for every Wine process to end, and an
  # update of the same prefix (which finishes what is missing) is tried.
  export WINEPREFIX=$pfx/disk/prefix
  made=0
  boot=-i
  for try in 1 2 3; do
    echo "run32: making the prefix (wineboot $boot), try $try" >> "$job/prefix.log"
    if {
      WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d" WINEDEBUG=err+all \
        "$wine" wineboot $boot || { echo "run32: wineboot failed ($?)"; false; }
    } && "$wineserver" -w && [ -f "$WINEPREFIX/system.reg" ] && {
      "$wine" reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f &&
      "$wine" reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f ||
        { echo "run32: reg add failed ($?)"; false; }
    } && "$wineserver" -w; then
      touch "$WINEPREFIX/.qz-ready"   # tools/wine-run.sh's mark of a finished prefix
      made=1
      break
    fi >> "$job/prefix.log" 2>&1
    "$wineserver" -w >/dev/null 2>&1
    boot=-u
  done
  [ $made = 1 ] || fail "cannot make the Wine prefix (see prefix.log)"
  unset WINEPREFIX
  umount "$pfx/disk" || fail "cannot unmount the new prefix disk"
  touch "$job/prefix-made"   # boot.sh keeps the image only when this is here
  stamp prefix-made
fi

mount -t ext4 -o ro,noload "$disk" "$pfx/disk" &&
  mount -t overlay -o "lowerdir=$pfx/disk/prefix,upperdir=$pfx/upper,workdir=$pfx/work" \
    qz-wine "$pfx/wine" || fail "cannot mount the prefix"
export WINEPREFIX=$pfx/wine

# One server for the whole boot, and the prefix's services started once up
# front, so the first test does not pay for them.
"$wineserver" -p
"$wine" cmd /c exit < /dev/null >> "$job/wine-start.log" 2>&1
stamp wine-ready
export QZ_WINE=$wine

awk '{ t[$1] = $2 } END {
  printf "run32: guest up at %.1fs, Wine ready at %.1fs (guest uptime)\n", t["init"], t["wine-ready"] }' \
  "$job/times" > "$err"

cd "$QZ_WORKDIR" || fail "no working directory $QZ_WORKDIR"
"${QZ_CMD[@]}" < /dev/null > "$out" 2> "$err"
echo $? > "$job/rc"
stamp finished

cd /
"$wineserver" -k >/dev/null 2>&1
for ((i = 0; i < ${#QZ_MOUNTS[@]}; i += 2)); do umount "${QZ_MOUNTS[i + 1]}"; done
power_off
