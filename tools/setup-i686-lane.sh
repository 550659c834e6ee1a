#!/bin/bash
# setup-i686-lane.sh - install what the 32-bit test lane needs (tools/run-i686-suite.sh):
#
#   wine32:i386        the 32-bit Wine loader (/usr/lib/wine/wine) and its DLLs
#   qemu-system-x86    the emulated machine (TCG; this host cannot run i386 code itself)
#   linux-image-amd64  a stock kernel for the guest, which can run i386 code
#   busybox-static     the guest's tiny initramfs (tools/run32/mkinitramfs.sh)
#
# Idempotent: when dpkg already has all of them it touches nothing and returns
# at once.  Needs root (runs itself through sudo otherwise).  Debian packages only.
#
# Two quirks of the package mirror are handled here:
#
#  * The security suite's i386 index can be broken (size mismatch), which makes
#    a plain `apt-get update` fail as soon as i386 is enabled.  We restrict the
#    security entries of the system's sources to the native architecture, so
#    that plain `apt-get update` keeps working for everything else; i386
#    packages then come from the main and updates suites only.
#
#  * Multi-Arch "same" libraries must have the same version on amd64 and i386.
#    Where the amd64 copy is a security build whose i386 twin we cannot see,
#    the install must move the amd64 copy to the main/updates version.  For this
#    one apt call only, a preference file (not left on the system) ranks the
#    main and updates suites above everything, downgrades included.
set -euo pipefail

PKGS=(wine32:i386 qemu-system-x86 linux-image-amd64 busybox-static)
NATIVE=$(dpkg --print-architecture)
CODENAME=$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)
CODENAME=${CODENAME:-bookworm}

log() { echo "setup-i686-lane: $*" >&2; }

# True when every package is installed and configured.
all_installed() {
  local p st
  for p in "${PKGS[@]}"; do
    st=$(dpkg-query -W -f='${db:Status-Abbrev}' "$p" 2>/dev/null) || return 1
    [ "${st:0:2}" = ii ] || return 1
  done
}

if all_installed; then
  exit 0
fi

if [ "$(id -u)" != 0 ]; then
  command -v sudo >/dev/null || { log "must run as root"; exit 1; }
  exec sudo "$0" "$@"
fi

# Adds "Architectures: $NATIVE" to every deb822 stanza whose Suites are all
# *-security suites and that does not already say which architectures it has.
# (A stanza that mixes security with other suites is left alone with a warning:
# restricting it would cut i386 off the main suite too.)
restrict_security_deb822() {
  local f=$1 tmp
  tmp=$(mktemp)
  awk -v arch="$NATIVE" '
    function flush() {
      if (n == 0) return
      if (security && !has_arch) {
        # put the field right after the Suites line
        for (i = 1; i <= n; i++) { print lines[i]; if (lines[i] ~ /^Suites:/) print "Architectures: " arch }
        changed = 1
      } else {
        for (i = 1; i <= n; i++) print lines[i]
      }
      n = 0; security = 0; has_arch = 0
    }
    /^[ \t]*$/ { flush(); print; next }
    {
      lines[++n] = $0
      if ($0 ~ /^Suites:/ && $0 ~ /-security/) {
        k = split(substr($0, 8), w, /[ \t]+/); mixed = 0
        for (j = 1; j <= k; j++) if (w[j] != "" && w[j] !~ /-security$/) mixed = 1
        if (mixed) print "setup-i686-lane: warning: " FILENAME ": mixed security stanza left as is" > "/dev/stderr"
        else security = 1
      }
      if ($0 ~ /^Architectures:/) has_arch = 1
    }
    END { flush(); exit changed ? 0 : 1 }
  ' "$f" > "$tmp" && { cat "$tmp" > "$f"; log "restricted security suite to $NATIVE in $f"; }
  rm -f "$tmp"
}

# Same for the one-line format: "deb URI suite-security ..." without options.
restrict_security_oneline() {
  local f=$1
  if grep -Eq '^[[:space:]]*deb[[:space:]]+[a-z]+://[^[:space:]]+[[:space:]]+[^[:space:]]*-security' "$f"; then
    sed -i -E "s|^([[:space:]]*deb)[[:space:]]+([a-z]+://[^[:space:]]+[[:space:]]+[^[:space:]]*-security)|\\1 [arch=$NATIVE] \\2|" "$f"
    log "restricted security suite to $NATIVE in $f"
  fi
}

if ! dpkg --print-foreign-architectures | grep -qx i386; then
  log "adding the i386 architecture"
  dpkg --add-architecture i386
fi

shopt -s nullglob
for f in /etc/apt/sources.list.d/*.sources; do restrict_security_deb822 "$f" || true; done
for f in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
  [ -f "$f" ] && restrict_security_oneline "$f"
done
shopt -u nullglob

PREFS=$(mktemp)
trap 'rm -f "$PREFS"' EXIT
cat > "$PREFS" <<EOF
Package: *
Pin: release o=Debian,n=$CODENAME
Pin-Priority: 1001

Package: *
Pin: release o=Debian,n=$CODENAME-updates
Pin-Priority: 1001
EOF

export DEBIAN_FRONTEND=noninteractive
log "apt-get update"
apt-get update -q
log "installing ${PKGS[*]}"
apt-get install -y -q --no-install-recommends --allow-downgrades \
  -o Dir::Etc::Preferences="$PREFS" "${PKGS[@]}"

all_installed || { log "packages still missing after install"; exit 1; }
[ -x /usr/lib/wine/wine ] || { log "no 32-bit wine loader at /usr/lib/wine/wine"; exit 1; }
log "done"
