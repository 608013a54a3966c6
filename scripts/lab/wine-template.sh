#!/bin/bash
# Makes the Wine prefix that every lab starts from, once, in the cache, and prints its path. Labs use it
# through a copy-on-write layer and do not change it.
set -euo pipefail
. "$(dirname "$0")/../common.sh"

WINE=${VNDISCOVER_WINE:-/usr/lib/wine/wine64}
[ -x "$WINE" ] || Die "$WINE is missing: run scripts/install-packages.sh as root"
RECIPE=2 # increase it when the steps below change their output
template=$VNDISCOVER_CACHE/wine/$("$WINE" --version | tr -c 'A-Za-z0-9.\n' _)-$(id -u)-$RECIPE
if [ -e "$template/ready" ]; then
    echo "$template/prefix"
    exit 0
fi

mkdir -p "$VNDISCOVER_CACHE/wine"
exec 9>"$VNDISCOVER_CACHE/wine/lock"
flock 9
if [ -e "$template/ready" ]; then # made by another lab while this one waited
    echo "$template/prefix"
    exit 0
fi
Say "making the Wine prefix that the labs start from (about 15 s, once)"
rm -rf "$template"
mkdir -p "$template"
# With Wine's null display, windows work and nobody sees them. Without any display, even a window for messages alone
# cannot be created while the desktop starts, as many programs that start at once found out.
# In a private lab, whose end also ends Wine's server.
export WINEPREFIX=$template/prefix WINEDEBUG=-all WINEDLLOVERRIDES='winemenubuilder.exe,mscoree,mshtml='
unset DISPLAY WAYLAND_DISPLAY
Quietly "$ROOT/scripts/lab/private-net.sh" bash -c \
    "'$WINE' wineboot -i && '$WINE' reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null && '$(dirname "$WINE")/wineserver64' -w" 9>&- || Die "wineboot failed"

# Disables services that no test needs, so that a lab starts in two thirds of the time. nsiproxy stays: it lists
# the adapters.
for service in PlugPlay Eventlog NDIS; do
    awk -v key="[System\\\\\\\\CurrentControlSet\\\\\\\\Services\\\\\\\\$service]" '
        /^\[/ { inside = index($0, key) == 1 }
        inside && /^"Start"=/ { $0 = "\"Start\"=dword:00000004" }
        { print }' "$WINEPREFIX/system.reg" >"$template/system.reg"
    mv "$template/system.reg" "$WINEPREFIX/system.reg"
done
# Names the folder of the server that made the prefix; each lab's server must make its own.
rm -f "$WINEPREFIX/wineserver"
touch "$template/ready"
echo "$WINEPREFIX"
