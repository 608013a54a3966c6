#!/bin/bash
# private-net.sh CMD [ARG...]: runs CMD in a private lab and returns its exit code.
#
# The lab has its own network (no interface but lo, so nothing reaches the machine's networks), process
# table, /run (so `ip netns add NAME` is private) and a private copy-on-write /etc (for /etc/netns/NAME,
# /etc/hosts, /etc/resolv.conf). All of it ends with CMD, or when this script is interrupted or killed,
# because the kernel ends every process of a process namespace together with the first one.
#
# CMD finds in its environment:
#   VNDISCOVER_LAB  an empty folder of this lab, in memory
#   TMPDIR          a folder in it
set -euo pipefail

[ $# -gt 0 ] || {
    echo "usage: private-net.sh CMD [ARG...]" >&2
    exit 2
}

# Inside: prepare the lab, run CMD, end (which ends everything else in here).
if [ "${VNDISCOVER_LAB_INIT:-}" = 1 ]; then
    unset VNDISCOVER_LAB_INIT
    mount -t tmpfs -o mode=755 tmpfs /run
    export VNDISCOVER_LAB=/run/lab TMPDIR=/run/lab/tmp
    mkdir -p /run/netns /run/lock $VNDISCOVER_LAB/tmp $VNDISCOVER_LAB/etc/{upper,work}
    # Wine's server keeps its folder here. Debian's Wine 10 crashes without it ("free(): invalid pointer"): it frees
    # the text of TMPDIR, which belongs to the environment.
    XDG_RUNTIME_DIR=/run/user/$(id -u)
    export XDG_RUNTIME_DIR # otherwise Wine 10 complains on standard error
    mkdir -p -m 755 /run/user
    mkdir -m 700 "$XDG_RUNTIME_DIR"
    mount -t overlay overlay /etc \
        -o lowerdir=/etc,upperdir=$VNDISCOVER_LAB/etc/upper,workdir=$VNDISCOVER_LAB/etc/work
    mkdir -p /etc/netns
    # A link into the machine's /run would dangle, and a minimal machine may have no such file. Windows programs need
    # an IPv6 name server to list adapters.
    rm -f /etc/resolv.conf /etc/hosts
    printf '127.0.0.1 localhost\n::1 localhost ip6-localhost\n' >/etc/hosts
    echo 'nameserver ::1' >/etc/resolv.conf
    # Otherwise net-snmp's agents and tools would write to /var/lib/snmp.
    export SNMP_PERSISTENT_DIR=$VNDISCOVER_LAB/snmp
    ip link set lo up
    # With random addresses, the kernel now and then puts the heap of a Wine program where Wine needs a page of its own
    # (0x7ffe0000): one start in some thousands ends at once, with 1 and without a word. Containers may forbid this.
    fixed=()
    ! setarch -R true 2>/dev/null || fixed=(setarch -R)
    status=0
    "${fixed[@]}" "$@" || status=$?
    exit $status
fi

user=()
[ "$(id -u)" = 0 ] || user=(--user --map-root-user)
# In the background, so that the traps below act at once; with this script's own input and with the default
# action for Ctrl-C, both of which a shell denies to background commands. If this script is killed without a
# chance to act, setpriv's signal ends unshare, and with it the lab.
VNDISCOVER_LAB_INIT=1 env --default-signal=INT,QUIT setpriv --pdeathsig KILL \
    unshare "${user[@]}" --mount --net --pid --ipc --uts --fork --kill-child=KILL --mount-proc \
    "$(readlink -f "${BASH_SOURCE[0]}")" "$@" <&0 &
world=$!
End() {
    kill -KILL $world 2>/dev/null || true
    wait $world 2>/dev/null || true
    exit "$1"
}
trap 'End 130' INT
trap 'End 143' TERM
trap 'End 129' HUP
status=0
wait $world || status=$?
exit $status
