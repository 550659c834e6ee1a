#!/bin/bash
# Sets everything up and runs the demo host under 64-bit Wine.
#   demo.sh [ARGS...]     ARGS go to the host, e.g. /LDE for the second language
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/tools/setup.sh"
"$root/tools/build.sh"
"$root/tools/wine-run.sh" "$root/build/x86_64/bin/demo_host.exe" "$@"
