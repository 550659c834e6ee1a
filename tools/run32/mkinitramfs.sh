#!/bin/bash
# mkinitramfs.sh - build the small initramfs the 32-bit lane's guest boots with.
#
#   mkinitramfs.sh KERNEL_VERSION OUTPUT.cpio.gz
#
# Contents: a static busybox, the kernel modules needed to reach the host
# (virtio PCI, 9p over virtio, overlayfs, virtio console) with their
# dependencies in load order, and an /init that
#
#   1. mounts the host's root filesystem (9p tag "hostroot", read-only) as the
#      lower layer of an overlay whose upper layer is a tmpfs, so the guest
#      sees the host's files at the same paths, writable but throw-away;
#   2. mounts the per-run job directory (9p tag "qzjob", read-write) on
#      /run/qz inside that root;
#   3. switches into the overlay and runs /run/qz/guest.sh with the host's
#      bash as PID 1.
#
# Anything going wrong in /init powers the machine off at once; boot.sh then
# finds no result file and reports an infrastructure failure.
set -euo pipefail

[ $# -eq 2 ] || { echo "usage: mkinitramfs.sh KERNEL_VERSION OUTPUT" >&2; exit 2; }
KVER=$1
OUT=$2
BUSYBOX=/bin/busybox   # busybox-static; the dynamic busybox would need its libs
# Leaf modules; modprobe resolves what they depend on.
LEAVES=(virtio_pci 9pnet_virtio 9p overlay virtio_console)

# ldd fails on a static executable; it must, since the initramfs has no libc.
if [ ! -x "$BUSYBOX" ] || ldd "$BUSYBOX" >/dev/null 2>&1; then
  echo "mkinitramfs: $BUSYBOX is missing or not static (install busybox-static)" >&2; exit 1
fi

STAGE=$(mktemp -d)
trap 'rm -rf "$STAGE"' EXIT
mkdir -p "$STAGE"/{bin,lib/modules,proc,sys,dev,lower,rw,newroot}
cp "$BUSYBOX" "$STAGE/bin/busybox"

# Copy every module once, in the order modprobe would insert it.
: > "$STAGE/lib/modules/load-order"
for leaf in "${LEAVES[@]}"; do
  modprobe -S "$KVER" --show-depends "$leaf" | while read -r kind path _; do
    [ "$kind" = insmod ] || continue          # "builtin NAME": nothing to load
    name=$(basename "$path"); name=${name%%.ko*}
    grep -qx "$name" "$STAGE/lib/modules/load-order" && continue
    case $path in
      *.ko)     cp "$path" "$STAGE/lib/modules/$name.ko" ;;
      *.ko.xz)  xz -dc "$path"   > "$STAGE/lib/modules/$name.ko" ;;
      *.ko.zst) zstd -dc "$path" > "$STAGE/lib/modules/$name.ko" ;;
      *) echo "mkinitramfs: unexpected module file $path" >&2; exit 1 ;;
    esac
    echo "$name" >> "$STAGE/lib/modules/load-order"
  done
done

cat > "$STAGE/init" <<'EOF'
#!/bin/busybox sh
# PID 1 of the 32-bit lane's guest until switch_root.
bb=/bin/busybox
die() {
  echo "qz-init: $*" > /dev/console
  echo o > /proc/sysrq-trigger
  $bb sleep 60
}
$bb mount -t proc proc /proc
$bb mount -t sysfs sys /sys
$bb mount -t devtmpfs dev /dev
while read -r m; do
  $bb insmod "/lib/modules/$m.ko" || die "cannot load module $m"
done < /lib/modules/load-order

p9=trans=virtio,version=9p2000.L,msize=512000
$bb mount -t 9p -o "$p9,ro,cache=loose" hostroot /lower || die "cannot mount the host root"
$bb mount -t tmpfs -o mode=0755 upper /rw
$bb mkdir -p /rw/upper /rw/work
$bb mount -t overlay -o lowerdir=/lower,upperdir=/rw/upper,workdir=/rw/work root /newroot ||
  die "cannot mount the overlay"

r=/newroot
$bb mount -t tmpfs -o mode=0755 run "$r/run"
$bb mkdir -p "$r/run/qz"
$bb mount -t 9p -o "$p9,cache=mmap" qzjob "$r/run/qz" || die "cannot mount the job share"
[ -r "$r/run/qz/guest.sh" ] || die "no guest.sh in the job share"
$bb mount --move /dev "$r/dev"
$bb mount --move /sys "$r/sys"
$bb mount --move /proc "$r/proc"
exec $bb switch_root "$r" /bin/bash /run/qz/guest.sh
EOF
chmod 0755 "$STAGE/init"

(cd "$STAGE" && find . -print0 | LC_ALL=C sort -z | cpio --null -o -H newc --quiet) |
  gzip -1 > "$OUT.tmp.$$"
mv "$OUT.tmp.$$" "$OUT"
