#!/bin/bash
# Sets everything up, builds, and runs the gadget gallery under 64-bit Wine.
#   demo.sh [ARGS...]     ARGS go to the host, e.g. /LDE for the second language
# With a display (DISPLAY set: an X server or Xvfb) the gallery opens as a
# live window. Without one, each page is painted off-screen and written as
# docs/gallery/<page>.png, and the paths are printed.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/tools/setup.sh"
"$root/tools/build.sh"
bin="$root/build/x86_64/bin"
if [ -n "${DISPLAY:-}" ]; then
  # A prefix of its own with Wine's X11 driver; the tests' prefix has none.
  export WINEPREFIX="$root/build/x86_64/wineprefix-live"
  export WINEDEBUG=${WINEDEBUG:--all}
  export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-mscoree,mshtml=}
  cd "$bin"
  exec /usr/lib/wine/wine64 demo_host.exe "$@"
fi
mkdir -p "$root/docs/gallery"
# The folder as Wine sees it: drive Z: is the root of the file system.
folder="Z:$(printf '%s' "$root/docs/gallery" | tr / '\\')"
"$root/tools/wine-run.sh" "$bin/demo_host.exe" --png "$folder" "$@"
