#!/bin/bash
# screenshots-lab.sh FOLDER DPI [contrast]: inside private-net.sh (screenshots.sh starts it). Simulates a user's keyboard.
# contrast: with light text on black, as in a high-contrast theme.
set -euo pipefail
here=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
folder=$1 dpi=$2 look=${3:-}

"$here/demo-net.sh"
# One namespace with the agents of twenty printers more.
ip netns add neta
ip link add eth0 netns neta type veth peer name neta netns switch1
ip -n switch1 -batch - <<<'link set neta master br0 up'
ip -n neta -batch - <<<'link set eth0 up
    addr add 10.77.1.2/24 dev eth0
    route add local 10.77.3.0/24 dev lo'
ip -n host route add 10.77.3.0/24 via 10.77.1.2
python3 "$here/screenshots-fleet.py" </dev/null &
fleet=$!
# Labs share the machine's temporary folder, which has the sockets of displays.
mkdir -p "$VNDISCOVER_LAB/x11"
mkdir -p /tmp/.X11-unix
mount --bind "$VNDISCOVER_LAB/x11" /tmp/.X11-unix
Xvfb -displayfd 1 -screen 0 $((1104 * dpi / 96))x$((624 * dpi / 96))x24 -nolisten tcp -nocursor \
    >"$VNDISCOVER_LAB/display" 2>/dev/null &
for _ in $(seq 400); do  # four labs begin at once
    [ ! -s "$VNDISCOVER_LAB/display" ] || break
    sleep 0.05
done
[ -s "$VNDISCOVER_LAB/display" ]
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
# Title bars draw their buttons with it.
[ -z "${VNDISCOVER_MARLETT:-}" ] || cp "$VNDISCOVER_MARLETT" "$VNDISCOVER_LAB/wine/host/prefix/drive_c/windows/Fonts/"
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

# Corner X Y: drags the lower right corner of the main window there.
Corner() {
    local X Y WIDTH HEIGHT
    eval "$(xdotool search --onlyvisible --name '^VnBrowser$' getwindowgeometry --shell)"
    xdotool mousemove $((X + WIDTH - 2)) $((Y + HEIGHT - 2)) mousedown 1 sleep 0.5 mousemove "$1" "$2" sleep 0.5 mouseup 1
    sleep 1
}

# Waits until the screen has stayed the same for two seconds: whatever sends requests shows seconds.
Settled() {
    local now='' before='' same=0
    for _ in $(seq 160); do
        now=$(import -window root rgb:- | cksum)
        [ "$now" = "$before" ] && ((same += 1)) || same=0
        [ $same -lt 5 ] || return 0
        before=$now
        sleep 0.4
    done
}

Wine "$VNDISCOVER_BIN/VnBrowser.exe" &
sleep 4
Settled
xdotool mousemove $((600 * dpi / 96)) $((622 * dpi / 96))
Picture empty
for switch in switch1 switch2; do ip -n $switch link set br0 down; done
Key F5
sleep 3
Settled
Picture none
for switch in switch1 switch2; do ip -n $switch link set br0 up; done
Key F5
sleep 4
Picture progress
Settled # by two communities, then the reading
Key F6 Home
Settled
Picture list
Key shift+Down shift+Down shift+Down
Settled
Picture several
Key alt+d
sleep 1
Picture menu
Key Escape Escape alt+v
sleep 1
Picture view
Key Escape Escape shift+F10
sleep 1
Picture context
Key Escape ctrl+f
xdotool type nowhere
sleep 1
Picture hidden
Key ctrl+a
xdotool type 10.77.1.21
sleep 1
Key F6 Home
Settled
Picture printer
Key F6 Down Down Down Down Down
Settled
Picture row
for page in protocols interfaces answers; do
    Key ctrl+Tab
    sleep 1
    Picture $page
done
Key ctrl+Tab alt+t s
sleep 1
Key Tab
xdotool type Office
Key Tab
xdotool type admin
Key Tab s s s Return # without a password
sleep 1
Picture message
Key Return
xdotool type authpass1
Key Tab a Tab
xdotool type privpass1
sleep 1
Picture settings
Key Escape alt+d d
sleep 1
xdotool type 10.80.9.12
sleep 2
Picture add
Key Escape alt+h a
sleep 1
Picture about
Key Escape alt+h c
sleep 1
Key End # the first call, a sweep
sleep 1
Picture calls
Key Escape
scan=Z:${VNDISCOVER_LAB//\//\\}\\monday.json # as the system's dialog requires
# Typed FILE: into the system's dialog for files, which lists folders first.
Typed() {
    sleep 4
    Key ctrl+a # instead of the proposed name
    xdotool type "$1"
    Key Return
    sleep 3
}
Key ctrl+s
Typed "$scan"
Key alt+t w
sleep 3
Picture doctor
Key Escape alt+d n
sleep 4
Picture diagnosis
Key Escape alt+d v
sleep 1
Key Return
sleep 6
Key Tab Tab Down
sleep 1
Picture walk
Key Escape ctrl+f Escape
# Some devices are off, and others have another state.
kill -USR1 $fleet
ip -n copy link set eth0 down
Key F5
sleep 3
Settled
Key F6 Home
Settled
Picture vanished
Corner 0 0
Picture smallest # as far as it goes
Corner $((1100 * dpi / 96)) $((620 * dpi / 96))
Key alt+t h
sleep 1
Picture changes
Key Escape alt+f c
Typed "$scan"
Picture compare
Key Escape ctrl+o
sleep 2
Picture save
Key alt+d # Don't save
Typed "$scan"
Settled
Picture file
Key F5
sleep 4
Picture find
Key Escape
for count in 20000 3 400; do
    python3 "$here/screenshots-many.py" "$VNDISCOVER_LAB/monday.json" "$VNDISCOVER_LAB/many.json" $count
    Key ctrl+o
    Typed "${scan/monday/many}"
    sleep $((count / 500))
    Settled
    Picture many-$count
done
Key ctrl+shift+r # where nobody answers
sleep 25
Picture reading
Key Escape
sleep 5
Key ctrl+f F6 Home ctrl+r
sleep 3
Key Escape
Picture stopping
