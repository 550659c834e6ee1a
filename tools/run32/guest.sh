#!/bin/bash
# guest.sh - PID 1 of the 32-bit lane's guest, after the initramfs has switched
# into the overlay of the host's root.  boot.sh copies this file into the job
# share (/run/qz) next to job.env, which says what to run:
#
#   QZ_MOUNTS     array of "tag path" pairs: read-write host directories to
#                 mount at their host paths
#   QZ_CACHE      cache directory of boot.sh (mounted read-write, tag qzcache,
#                 only when a new Wine prefix is to be stored there)
#   QZ_PREFIX     the cached Wine prefix; QZ_NEW_PREFIX=1 makes it first
#   QZ_WORKDIR    where QZ_CMD starts
#   QZ_CMD        the command (array), with the exports of job.env around it
#
# Results go back through the job share: rc (QZ_CMD's exit status), times
# (guest uptime stamps), prefix.log, error (why nothing ran).  QZ_CMD's stdout
# and stderr go straight to the host through two virtio serial ports.
#
# No `set -e` (nor -u): whatever happens, this script must reach the power-off.
set -o pipefail

job=/run/qz
export PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin
export HOME=/root USER=root LOGNAME=root LANG=C.UTF-8 TERM=dumb

stamp() { echo "$1 $(cut -d' ' -f1 /proc/uptime)" >> "$job/times"; }

power_off() {
  wineserver_bin=/usr/lib/wine/wineserver
  [ -x "$wineserver_bin" ] && "$wineserver_bin" -k >/dev/null 2>&1
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
wine=/usr/lib/wine/wine
wineserver=/usr/lib/wine/wineserver
[ -x "$wine" ] || fail "no 32-bit Wine loader at $wine"

if [ "$QZ_NEW_PREFIX" = 1 ]; then
  # Build the prefix in the guest's tmpfs, use it for this boot, and store a
  # copy in the cache (copy, then rename: a broken copy is never picked up).
  # Settings: the null graphics driver (no display here), and no crash dialog:
  # a crashing test gets winedbg's backtrace on stderr and ends, instead of
  # waiting for a click on a window nobody can see.
  # Changing these?  Bump prefix_recipe in boot.sh so cached prefixes are remade.
  export WINEPREFIX=/tmp/qz-wineprefix
  {
    WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d" WINEDEBUG=-all \
      "$wine" wineboot -i &&
    "$wine" reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f &&
    "$wine" reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f &&
    "$wineserver" -w
  } >> "$job/prefix.log" 2>&1 || fail "cannot make the Wine prefix (see prefix.log)"
  stamp prefix-made
  mkdir -p "$QZ_CACHE" && mount -t 9p -o "$p9" qzcache "$QZ_CACHE" ||
    fail "cannot mount the cache"
  tmp=$QZ_PREFIX.part.$$
  if cp -a "$WINEPREFIX" "$tmp" && mv -T "$tmp" "$QZ_PREFIX" 2>/dev/null; then
    :
  else
    rm -rf "$tmp"   # another run stored it first, or the copy failed: next run retries
  fi
  umount "$QZ_CACHE"
  stamp prefix-stored
else
  # Copy-on-write through the overlay: the cache itself is never changed.
  export WINEPREFIX=$QZ_PREFIX
fi

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
stamp done

cd /
"$wineserver" -k >/dev/null 2>&1
for ((i = 0; i < ${#QZ_MOUNTS[@]}; i += 2)); do umount "${QZ_MOUNTS[i + 1]}"; done
power_off
