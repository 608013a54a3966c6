#!/bin/bash
# run.sh relay|hostile PROGRAM [ARG...]: runs a Windows test program in a new test network, inside
# scripts/lab/private-net.sh. The devices are played by relay.py, moved by the test, or by hostile.py, which
# answers by itself. PROGRAM and what lies beside it run from a folder of the lab, into which a test may put
# files. While it runs, `ip -batch` in the host's namespace obeys what a test writes to the lab's file
# "ip-commands". Wine prefers files in the program's folder to the libraries that the tests set traps for.
set -euo pipefail
here=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
lab=$here/../../scripts/lab
devices=$1 program=$2
shift 2

"$lab/test-net.sh"
# Any address of this network may be a sender in neta.
ip -n neta route add local 10.99.0.0/16 dev lo
case $devices in
relay) player=$here/../lab/relay.py ;;
hostile) player=$here/hostile.py ;;
esac
exec 3< <(exec env PYTHONDONTWRITEBYTECODE=1 python3 "$player" 2>&1)
read -r -t 60 word <&3 && [ "$word" = ready ] || {
    echo "run.sh: $player does not get ready: ${word:-}"
    exit 1
}
sed -u 's/^/devices: /' <&3 &

mkdir -p "$VNDISCOVER_LAB/bin" "$VNDISCOVER_LAB/full"
cp "$program" "$(dirname "$program")"/{VnDiscover,decoy}.dll "$VNDISCOVER_LAB/bin"
mount -t tmpfs -o size=16k tmpfs "$VNDISCOVER_LAB/full"
commands=$VNDISCOVER_LAB/ip-commands
while sleep 0.05; do
    [ ! -e "$commands" ] || {
        ip -n host -batch "$commands" || true
        rm "$commands"
    }
done &

export WINEDLLOVERRIDES='icmp,iphlpapi,ws2_32,bcrypt=n,b'
cd "$TMPDIR" # the module's log file goes to the current folder
status=0
"$lab/wine-run.sh" host "$VNDISCOVER_LAB/bin/$(basename "$program")" "$@" >"$VNDISCOVER_LAB/output" 2>&1 || status=$?
tr -d '\r' <"$VNDISCOVER_LAB/output"
exit $status
