#!/bin/bash
# The steps of the demo, inside private-net.sh (demo.sh starts it). VNDISCOVER_BIN: the folder of vndiscover.exe.
# A failing step is shown like the others, with its exit code; the demo then fails at the end.
set -uo pipefail
here=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
failed=0

Title() { printf '\n=== %s\n' "$*"; }

# Shown WORD...: prints the words as one would type them.
Shown() {
    local word line=
    for word in "$@"; do
        case $word in
        '' | *[!A-Za-z0-9_./:=,+-]*) line+=" '$word'" ;;
        *) line+=" $word" ;;
        esac
    done
    printf '\n$%s\n' "$line"
}

# Vn ARG...: runs vndiscover.exe on the lab's host.
Vn() { Expect 0 "$@"; }
# VnFails ARG...: the same, expecting exit code 1.
VnFails() { Expect 1 "$@"; }
# Expect CODE ARG...
Expect() {
    local status=0 expected=$1
    shift
    Shown vndiscover.exe "$@"
    "$here/wine-run.sh" host "$VNDISCOVER_BIN/vndiscover.exe" "$@" </dev/null | tr -d '\r'
    status=${PIPESTATUS[0]}
    if [ "$status" != 0 ]; then
        echo "(exit code $status)"
    fi
    [ "$status" = "$expected" ] || failed=1
}

"$here/demo-net.sh" || exit 1
cd "$VNDISCOVER_LAB" || exit 1

Title "The lab: real agents (net-snmp's snmpd) behind two switches; vndiscover.exe runs under Wine on 'host'"
sed -n 's/^#   /    /p' "$here/demo-net.sh"

Title "The printers on both networks, the worst first"
Vn printers

Title "A sweep asks every device on both networks"
Vn sweep
Vn sweep --format json
Title "The same over IPv6: the device without an IPv4 address answers too"
Vn sweep --ipv6

Title "A JSON request names further values; the module asks each device for them"
cat >request.json <<'END'
{
    "DiscoverOID": ".1.3.6.1.4.1.5963.43.5.1.1.1.1",
    "GET": {
        ".1.3.6.1.2.1.1.1.0": "",
        ".1.3.6.1.2.1.1.5.0": "",
        ".1.3.6.1.2.1.1.6.0": ""
    }
}
END
Shown cat request.json
cat request.json
Vn sweep --json request.json --format json
Vn sweep --json request.json --ipv6

Title "One device: read, walk, write"
Vn get 10.77.1.22 .1.3.6.1.4.1.5963.43.5.1.1.1.1 .1.3.6.1.2.1.1.6.0
Vn walk 10.77.2.23 .1.3.6.1.2.1.2.1
Vn walk 10.77.2.23 .1.3.6.1.2.1.2.2.1.2
Vn info fe80::1:24
Vn set --write-community secret 10.77.1.22 .1.3.6.1.2.1.1.4.0 s 'Copy room team, ext. 42'
Vn get 10.77.1.22 .1.3.6.1.2.1.1.4.0

Title "A printer: what its standard variables mean, and the same by name"
Vn printer 10.77.1.21
Vn get 10.77.1.21 hrPrinterStatus.5 hrPrinterDetectedErrorState.5 prtMarkerSuppliesType.5.5 --names

Title "SNMPv3: authenticated and encrypted; the device that refuses communities answers too"
v3=(--v3 -u sha256aes -a SHA256 -A authpass1 -x AES -X privpass1)
Vn sweep "${v3[@]}"
Vn sweep "${v3[@]}" --json request.json --format json
Vn get 10.77.2.25 .1.3.6.1.2.1.1.1.0 --v3 -u md5des -a MD5 -A authpass1 -x DES -X privpass1

responder=(wsdd -4 -i eth0 -n HALL)
command -v wsdd >/dev/null || responder=(wsdd2 -4 -i eth0 -N HALL -G WORKGROUP) # on Debian 13
Title "WS-Discovery: a real responder (${responder[0]}) on 'hall'"
Shown "${responder[@]}" "# on hall"
# Its warnings about a missing neighbour on lo are not part of the demo.
ip netns exec hall "${responder[@]}" >wsdd.log 2>&1 </dev/null &
responder=$!
for _ in $(seq 100); do
    grep -qs ':0E76 ' <(nsenter --net=/run/netns/hall cat /proc/net/udp) && break # port 3702
    sleep 0.05
done
Vn wsd --all --timeout 1000
kill $responder

Title "Nothing found? What a sweep has to work with here, and what one device answers to"
Vn doctor
Vn doctor 10.77.1.22 "${v3[@]}"
VnFails doctor 10.77.2.25 # this device refuses communities

Title "Reachability"
Vn ping 10.77.2.25
Vn ipv6
exit $failed
