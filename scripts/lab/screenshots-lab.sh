#!/bin/bash
# screenshots-lab.sh FOLDER DPI [contrast]: inside private-net.sh (screenshots.sh starts it). Simulates a user's keyboard.
# contrast: with light text on black, as in a high-contrast theme.
set -euo pipefail
here=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
folder=$1 dpi=$2 look=${3:-}

"$here/demo-net.sh"
# Labs share the machine's temporary folder, which has the sockets of displays.
mkdir -p "$VNDISCOVER_LAB/x11"
mkdir -p /tmp/.X11-unix
mount --bind "$VNDISCOVER_LAB/x11" /tmp/.X11-unix
Xvfb -displayfd 1 -screen 0 $((1200 * dpi / 96))x$((720 * dpi / 96))x24 -nolisten tcp -nocursor \
    >"$VNDISCOVER_LAB/display" 2>/dev/null &
for _ in $(seq 100); do
    [ ! -s "$VNDISCOVER_LAB/display" ] || break
    sleep 0.05
done
DISPLAY=:$(<"$VNDISCOVER_LAB/display")
export DISPLAY VNDISCOVER_WINE_DISPLAY=$DISPLAY

Wine() { "$here/wine-run.sh" host "$@"; }
Wine reg add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD /d "$dpi" /f >/dev/null
Wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >/dev/null
Wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d x11 /f >/dev/null
if [ "$look" = contrast ]; then
    Wine reg add 'HKCU\Software\Microsoft\Windows\CurrentVersion\ThemeManager' /v ThemeActive /d 0 /f >/dev/null
    while read -r colour value; do
        Wine reg add 'HKCU\Control Panel\Colors' /v "$colour" /d "$value" /f >/dev/null
    done <<'END'
Window 0 0 0
WindowText 255 255 255
WindowFrame 255 255 255
ButtonFace 0 0 0
ButtonText 255 255 255
ButtonHilight 255 255 255
ButtonLight 128 128 128
ButtonShadow 128 128 128
ButtonDkShadow 255 255 255
GrayText 63 242 63
Hilight 26 235 255
HilightText 0 0 0
HotTrackingColor 255 255 0
Menu 0 0 0
MenuBar 0 0 0
MenuText 255 255 255
MenuHilight 26 235 255
ActiveTitle 26 235 255
TitleText 0 0 0
InactiveTitle 0 0 0
InactiveTitleText 255 255 255
Scrollbar 0 0 0
InfoWindow 0 0 0
InfoText 255 255 255
END
fi
"$here/wine-run.sh" --stop host # its desktop has no display
ip netns exec hall wsdd -4 -i eth0 -n HALL >/dev/null 2>&1 </dev/null &

Picture() { import -window root "$folder/$1-${look:-$dpi}.png"; }
# Key NAME...: presses keys with the pauses of a person.
Key() {
    for name in "$@"; do
        xdotool key "$name"
        sleep 0.2
    done
}

Wine "$VNDISCOVER_BIN/VnBrowser.exe" &
sleep 4
xdotool mousemove $((600 * dpi / 96)) $((690 * dpi / 96))
Picture empty
Key F5
sleep 12
Key ctrl+shift+r
sleep 8
Key Tab Tab Tab Tab Tab Tab Tab Tab Home
sleep 2
Picture printer
for page in protocols interfaces answers; do
    Key ctrl+Tab
    sleep 1
    Picture $page
done
Key ctrl+Tab
Key alt+t s
sleep 1
Key Tab
xdotool type Office
Key Tab
xdotool type admin
Key Tab s s s Tab
xdotool type authpass1
Key Tab a Tab
xdotool type privpass1
sleep 1
Picture settings
Key Escape alt+h c
sleep 1
Key End # the first call, a sweep
sleep 1
Picture calls
Key Escape
scan=Z:${VNDISCOVER_LAB//\//\\}\\scan.json # as the system's dialog requires
Key ctrl+s
sleep 4 # the dialog lists folders first
Key ctrl+a # instead of the proposed name
xdotool type "$scan"
Key Return
sleep 2
Key alt+t w
sleep 2
Picture doctor
Key Escape alt+d n
sleep 3
Picture diagnosis
Key Escape alt+d v
sleep 1
Key Return
sleep 5
Picture walk
Key Escape alt+e l
# One device is gone, and the next scan has not asked the others yet.
ip -n copy link set eth0 down
Key F5
sleep 12
Key ctrl+shift+r
sleep 8
Key alt+f c
sleep 4
xdotool type "$scan"
Key Return
sleep 2
Picture compare
