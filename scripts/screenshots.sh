#!/bin/bash
# screenshots.sh [FOLDER]: pictures of VnBrowser.exe at work on the demo's devices, at 96 and 192 DPI and with colours of
# high contrast, as PNG files in FOLDER (build/screenshots). Installs what is missing and builds first.
set -euo pipefail
. "$(dirname "$0")/common.sh"

"$ROOT/scripts/install-packages.sh" xvfb fonts-liberation imagemagick xdotool
cd "$ROOT"
Say "building"
Quietly cmake --preset release || Die "preset release cannot be configured"
Quietly cmake --build --preset release --target VnBrowser || Die "the build failed"
"$ROOT/scripts/lab/wine-template.sh" >/dev/null
folder=${1:-$ROOT/build/screenshots}
mkdir -p "$folder"
for look in 96 192 '96 contrast'; do
    # shellcheck disable=SC2086 # two words
    VNDISCOVER_BIN=$ROOT/build/release/bin "$ROOT/scripts/lab/private-net.sh" \
        "$ROOT/scripts/lab/screenshots-lab.sh" "$folder" $look
done
