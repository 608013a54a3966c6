#!/bin/bash
# screenshots.sh [FOLDER]: pictures of VnBrowser.exe at work on invented devices, at 96, 144 and 192 DPI and with colours of
# high contrast, as PNG files in FOLDER (build/screenshots), and sheet.png with all of them. Installs what is missing and
# builds first.
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
# Of this package, the lab gets only one font: the others would change the texts of the tests.
(cd "$folder" && Quietly apt-get download fonts-wine && dpkg -x fonts-wine_*.deb fonts && rm fonts-wine_*.deb) ||
    Say "title bars will have letters for buttons"
looks=(96 144 192 '96 contrast')
for look in "${looks[@]}"; do
    # shellcheck disable=SC2086 # two words
    VNDISCOVER_BIN=$ROOT/build/release/bin VNDISCOVER_MARLETT=$(ls "$folder"/fonts/usr/share/wine/fonts/marlett.ttf || true) \
        "$ROOT/scripts/lab/private-net.sh" "$ROOT/scripts/lab/screenshots-lab.sh" "$folder" $look &
done
wait
rm -rf "$folder/fonts"
# A row for each state, a column for each look, in the order in which the first look's pictures were taken.
pictures=()
for first in $(ls -tr "$folder"/*-96.png); do
    for look in "${looks[@]}"; do pictures+=("${first%-96.png}-${look#96 }.png"); done
done
# Made small one by one: all at once, they need more memory than ImageMagick allows itself.
small=$(mktemp -d)
for picture in "${pictures[@]}"; do convert "$picture" -resize 560x336 -depth 8 "$small/${picture##*/}"; done
montage -limit memory 2GiB -font Liberation-Sans -pointsize 16 -label '%t' "${pictures[@]/#*\//$small/}" \
    -tile "${#looks[@]}x" -geometry 560x336+6+6 "$folder/sheet.png"
rm -rf "$small"
