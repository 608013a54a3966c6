#!/bin/bash
# Makes the Wine prefix that every lab starts from, once, in the cache, and prints its path. Labs put a
# copy-on-write layer over it and leave it as it is.
set -euo pipefail
. "$(dirname "$0")/../common.sh"

WINE=${VNDISCOVER_WINE:-/usr/lib/wine/wine64}
[ -x "$WINE" ] || Die "$WINE is missing: run scripts/install-packages.sh as root"
RECIPE=1 # raise it when the steps below change what they produce
template=$VNDISCOVER_CACHE/wine/$("$WINE" --version | tr -c 'A-Za-z0-9.\n' _)-$(id -u)-$RECIPE
if [ -e "$template/ready" ]; then
    echo "$template/prefix"
    exit 0
fi

mkdir -p "$VNDISCOVER_CACHE/wine"
exec 9>"$VNDISCOVER_CACHE/wine/lock"
flock 9
if [ -e "$template/ready" ]; then # another lab made it while we waited
    echo "$template/prefix"
    exit 0
fi
Say "making the Wine prefix that the labs start from (about 15 s, once)"
rm -rf "$template"
mkdir -p "$template"
# In a private network, whose end also ends Wine's server.
export WINEPREFIX=$template/prefix WINEDEBUG=-all WINEDLLOVERRIDES='winemenubuilder.exe,mscoree,mshtml='
unset DISPLAY WAYLAND_DISPLAY
Quietly "$ROOT/scripts/lab/private-net.sh" bash -c \
    "'$WINE' wineboot -i && '$(dirname "$WINE")/wineserver64' -w" 9>&- || Die "wineboot failed"

# Services that no test needs, to be started with every prefix otherwise: without them a lab starts in two
# thirds of the time. (nsiproxy stays: it lists the adapters.)
for service in PlugPlay Eventlog NDIS; do
    awk -v key="[System\\\\\\\\CurrentControlSet\\\\\\\\Services\\\\\\\\$service]" '
        /^\[/ { inside = index($0, key) == 1 }
        inside && /^"Start"=/ { $0 = "\"Start\"=dword:00000004" }
        { print }' "$WINEPREFIX/system.reg" >"$template/system.reg"
    mv "$template/system.reg" "$WINEPREFIX/system.reg"
done
# It names the folder of the server that made the prefix; each lab's server shall make its own.
rm -f "$WINEPREFIX/wineserver"
touch "$template/ready"
echo "$WINEPREFIX"
