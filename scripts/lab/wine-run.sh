#!/bin/bash
# wine-run.sh NETNS PROGRAM [ARG...]: runs a Windows program in a namespace of the lab (private-net.sh), with a
# Wine prefix for this lab and namespace only: its server owns the sockets, so it must run in the program's
# network. The server stays for the next program; it ends with the lab, or with
#   wine-run.sh --stop NETNS
set -euo pipefail

here=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
WINE=${VNDISCOVER_WINE:-/usr/lib/wine/wine64}
[ -n "${VNDISCOVER_LAB:-}" ] || {
    echo "wine-run.sh: not in a lab: start it through private-net.sh" >&2
    exit 2
}
stop=
[ "${1:-}" != --stop ] || {
    stop=1
    shift
}
netns=$1
shift
# In the lab's mount namespace, so that all callers see the same prefix.
if [ "$(readlink /proc/self/ns/mnt)" != "$(readlink /proc/1/ns/mnt)" ]; then
    exec nsenter --target 1 --mount --wd=. "$here/wine-run.sh" ${stop:+--stop} "$netns" "$@"
fi

export WINEPREFIX=$VNDISCOVER_LAB/wine/$netns/prefix WINEDEBUG=${WINEDEBUG:--all}
# Without Wine's debugger, unless it was asked for: under it, a program that crashes ends with exit code 0 instead of 5.
[ "${1:-}" = winedbg ] || export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:+$WINEDLLOVERRIDES;}winedbg.exe=d"
export LC_ALL=C.UTF-8 # otherwise Wine does not find files with names that are not ASCII
# No display, except one that the caller made before the first program of this prefix.
unset DISPLAY WAYLAND_DISPLAY
[ -z "${VNDISCOVER_WINE_DISPLAY:-}" ] || export DISPLAY=$VNDISCOVER_WINE_DISPLAY
if [ -n "$stop" ]; then
    [ ! -e "$WINEPREFIX/system.reg" ] || exec "$(dirname "$WINE")/wineserver64" -k
    exit 0
fi
layer=$VNDISCOVER_LAB/wine/$netns

# Wine 10 lists no IPv6 adapters at all (ERROR_INVALID_DATA) while the kernel has a default route without a gateway.
# Each of its two route tables begins with an unreachable one until there is a real one. So both get a real one, and
# rules keep packets from using it.
ListIPv6Adapters() {
    local link
    link=$(ip -n "$netns" -6 -oneline address show up scope link | awk 'NR == 1 { print $2 }')
    [ -n "$link" ] || return 0
    ip -n "$netns" -6 -batch - <<END
route add default via fe80::ffff dev $link metric 4000
route add default via fe80::ffff dev $link metric 4000 table local
rule add pref 1 lookup local suppress_prefixlength 0
rule add pref 2 lookup main suppress_prefixlength 0
rule del pref 0
rule del pref 32766
END
}

if [ ! -e "$layer/ready" ]; then
    template=$("$here/wine-template.sh")
    mkdir -p "$WINEPREFIX"
    exec 9>"$layer/lock"
    flock 9
    if [ ! -e "$layer/ready" ]; then
        mkdir -p "$layer/upper" "$layer/work"
        mount -t overlay overlay "$WINEPREFIX" \
            -o "lowerdir=$template,upperdir=$layer/upper,workdir=$layer/work"
        ListIPv6Adapters
        # Started here, the server and Wine's services stay. Otherwise they would end with a program, and the next one
        # would fail if started at that moment; and they would keep the first one's output pipes open.
        ip netns exec "$netns" "$(dirname "$WINE")/wineserver64" --persistent </dev/null >/dev/null 2>&1 9>&-
        # On a busy machine the very first program now and then fails to start.
        for attempt in 1 2 3 none; do
            [ "$attempt" != none ] || {
                echo "wine-run.sh: Wine does not start" >&2
                exit 2
            }
            ! ip netns exec "$netns" "$WINE" cmd /c exit </dev/null >/dev/null 2>&1 9>&- || break
        done
        touch "$layer/ready"
    fi
    exec 9>&-
fi
exec ip netns exec "$netns" "$WINE" "$@"
