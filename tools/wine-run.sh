#!/bin/bash
# Runs one Windows program under Wine, headless, with Wine's null display
# driver. ctest calls it as the cross-compiling emulator:
#   wine-run.sh PROGRAM.exe [ARGS...]
#
# Environment:
#   QZ_WINE     the Wine loader (default: /usr/lib/wine/wine64; the 32-bit lane sets its own)
#   WINEPREFIX  used as it is when set; otherwise a prefix is made once in
#               the build tree, beside the bin/ folder that holds the program
#   WINEDEBUG   default -all
set -euo pipefail

exe=$1; shift
dir=$(cd "$(dirname "$exe")" && pwd)
name=$(basename "$exe")
wine=${QZ_WINE:-/usr/lib/wine/wine64}
export WINEDEBUG=${WINEDEBUG:--all}
# No mono or gecko installers, and no X display.
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-mscoree,mshtml=}
unset DISPLAY WAYLAND_DISPLAY

# A prefix given by the caller is used as it is; only our own is made here.
own_prefix=0
if [ -z "${WINEPREFIX:-}" ]; then
  export WINEPREFIX=$(dirname "$dir")/wineprefix
  own_prefix=1
fi

# Make the prefix once; concurrent runners wait for the first.
if [ $own_prefix = 1 ] && [ ! -f "$WINEPREFIX/.qz-ready" ]; then
  mkdir -p "$WINEPREFIX"
  exec 9>"$WINEPREFIX.lock"
  flock 9
  if [ ! -f "$WINEPREFIX/.qz-ready" ]; then
    "$wine" wineboot -i >/dev/null 2>&1 || true
    "$wine" reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f >/dev/null 2>&1
    wineserver -w 2>/dev/null || true
    touch "$WINEPREFIX/.qz-ready"
  fi
  exec 9>&-
fi

# Run from the program's folder by its bare name: the command line then holds
# no slashes that a language switch search could mistake for "/L".
cd "$dir"
exec "$wine" "$name" "$@"
