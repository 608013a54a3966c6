#!/bin/bash
# The network for the tests, inside private-net.sh. The host has two adapters, each on a different network:
#
#   host eth0  10.77.1.1/24 fe80::1:1  ----  neta eth0  10.77.1.2/24 fe80::1:2
#                                            for agents: 10.77.1.11 to .15, fe80::1:11 to 13
#   host eth1  10.77.2.1/24 fe80::2:1  ----  netb eth0  10.77.2.2/24 fe80::2:2
#
# Addresses are fixed and usable at once, and router solicitations are off, so a test sees only its own traffic.
set -euo pipefail

[ -n "${VNDISCOVER_LAB:-}" ] || {
    echo "test-net.sh: not in a lab: start it through private-net.sh" >&2
    exit 2
}

ip -batch - <<'END'
netns add host
netns add neta
netns add netb
END
for netns in host neta netb; do
    mkdir -p /etc/netns/$netns
    echo 'nameserver ::1' >/etc/netns/$netns/resolv.conf
    nsenter --net=/run/netns/$netns bash -c '
        for all in all default; do
            echo 0 >/proc/sys/net/ipv6/conf/$all/router_solicitations
            echo 0 >/proc/sys/net/ipv6/conf/$all/accept_ra
        done'
done
ip -batch - <<'END'
link add eth0 netns host type veth peer name eth0 netns neta
link add eth1 netns host type veth peer name eth0 netns netb
END
# Interface LINK: brings a link up without an automatic address.
Interface() { printf 'link set %s addrgenmode none\nlink set %s up\n' "$1" "$1"; }
Address() { printf 'addr add %s dev %s\n' "$2" "$1"; }
LinkLocal() { printf 'addr add %s/64 dev %s scope link nodad\n' "$2" "$1"; }
{
    echo 'link set lo up'
    Interface eth0
    Address eth0 10.77.1.1/24
    LinkLocal eth0 fe80::1:1
    Interface eth1
    Address eth1 10.77.2.1/24
    LinkLocal eth1 fe80::2:1
    echo 'route add default dev eth0' # the route of 255.255.255.255 and 239.255.255.250
} | ip -n host -batch -
{
    echo 'link set lo up'
    Interface eth0
    for last in 2 11 12 13 14 15; do Address eth0 10.77.1.$last/24; done
    for last in 2 11 12 13; do LinkLocal eth0 fe80::1:$last; done
} | ip -n neta -batch -
{
    echo 'link set lo up'
    Interface eth0
    Address eth0 10.77.2.2/24
    LinkLocal eth0 fe80::2:2
} | ip -n netb -batch -
