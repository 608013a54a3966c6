#!/bin/bash
# The network of the demo, inside private-net.sh: two switches, the host on both, devices with real agents.
# Every device has its own namespace, of the same name.
#
#   host eth0 10.77.1.1  -- switch1 --  hall     10.77.1.21  fe80::1:21  also a WS-Discovery responder
#                                       copy     10.77.1.22  fe80::1:22
#                                       attic    no IPv4     fe80::1:24
#   host eth1 10.77.2.1  -- switch2 --  lab      10.77.2.23  fe80::2:23
#                                       vault    10.77.2.25  fe80::2:25  SNMPv3 only
set -euo pipefail
here=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")

# Switch NAME
Switch() {
    ip netns add "$1"
    ip -n "$1" -batch - <<<"link add br0 type bridge
        link set br0 addrgenmode none
        link set br0 up"
}

# Plug NETNS LINK SWITCH ADDRESS...: connects an adapter of NETNS to a switch, and sets the adapter's addresses.
Plug() {
    local netns=$1 link=$2 switch=$3 address
    shift 3
    [ -e "/run/netns/$netns" ] || {
        ip netns add "$netns"
        ip -n "$netns" link set lo up
    }
    ip link add "$link" netns "$netns" type veth peer name "$netns" netns "$switch"
    ip -n "$switch" -batch - <<<"link set $netns addrgenmode none
        link set $netns master br0 up"
    {
        printf 'link set %s addrgenmode none\nlink set %s up\n' "$link" "$link"
        for address in "$@"; do
            case $address in
            *:*) printf 'addr add %s/64 dev %s scope link nodad\n' "$address" "$link" ;;
            *) printf 'addr add %s/24 dev %s\n' "$address" "$link" ;;
            esac
        done
    } | ip -n "$netns" -batch -
}

Switch switch1
Switch switch2
Plug host eth0 switch1 10.77.1.1 fe80::1:1
Plug host eth1 switch2 10.77.2.1 fe80::2:1
ip -n host route add default dev eth0 # the route of 255.255.255.255
Plug hall eth0 switch1 10.77.1.21 fe80::1:21
Plug copy eth0 switch1 10.77.1.22 fe80::1:22
Plug attic eth0 switch1 fe80::1:24
Plug lab eth0 switch2 10.77.2.23 fe80::2:23
Plug vault eth0 switch2 10.77.2.25 fe80::2:25

# Agent NAME MODEL DESCRIPTION LOCATION ACCESS [LINES]: starts an agent with the users of all devices and the lines
# ACCESS. LINES replace what MODEL, DESCRIPTION and LOCATION would give.
Agent() {
    local lines=${6:-}
    [ -n "$lines" ] || lines="override .1.3.6.1.4.1.5963.43.5.1.1.1.1 octet_str \"$2\"
sysDescr $3
sysLocation $4"
    "$here/snmp-agent.sh" "$1" "$1" >/dev/null <<END
agentAddress udp:161,udp6:161
$5
$lines
psysName $1
createUser shaaes SHA authpass1 AES privpass1
createUser sha256aes SHA-256 authpass1 AES privpass1
createUser md5des MD5 authpass1 DES privpass1
rouser shaaes priv
rouser sha256aes priv
rouser md5des priv
END
}
communities='rocommunity sesame
rocommunity6 sesame
rwcommunity secret
rwcommunity6 secret'
# With a full Printer MIB.
Agent hall "" "" "" "$communities" "$(<"$here/laserpro-410.conf")"
Agent copy "VN MultiStation C9" "Colour copier, printer, scanner and fax" "Copy room, 2nd floor" "$communities"
Agent attic "VN InkLine 70" "Ink jet printer with an IPv6 address alone" "Attic" "$communities"
Agent lab "VN LabelJet 8" "Label printer" "Laboratory" "$communities"
Agent vault "VN SecurePrint 2" "Printer that speaks SNMPv3 alone" "Vault" ""
