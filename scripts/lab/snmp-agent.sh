#!/bin/bash
# snmp-agent.sh NETNS NAME <CONF: starts a real agent (net-snmp's snmpd) in a namespace of the lab, with the
# configuration from standard input, and returns once it is listening. Prints its process id. It ends with the lab.
# The log is $VNDISCOVER_LAB/NAME.log.
set -euo pipefail

[ -n "${VNDISCOVER_LAB:-}" ] || {
    echo "snmp-agent.sh: not in a lab: start it through private-net.sh" >&2
    exit 2
}
SNMPD=$(PATH=$PATH:/usr/sbin command -v snmpd) || {
    echo "snmp-agent.sh: snmpd is missing: run scripts/install-packages.sh as root" >&2
    exit 1
}
netns=$1 name=$2
conf=$VNDISCOVER_LAB/$name.conf log=$VNDISCOVER_LAB/$name.log
cat >"$conf"
# Agents and tools use numeric OIDs, so no MIB files are read. A separate folder gives each agent its own engine ID.
MIBS='' SNMP_PERSISTENT_DIR=$VNDISCOVER_LAB/$name.state nsenter --net=/run/netns/"$netns" \
    "$SNMPD" -f -Lf "$log" -C -c "$conf" -I -smux </dev/null >/dev/null 2>&1 &
agent=$!
for _ in $(seq 200); do
    if grep -qs 'NET-SNMP version' "$log"; then # written once all its sockets are open
        echo $agent
        exit 0
    fi
    kill -0 $agent 2>/dev/null || break
    sleep 0.02
done
echo "snmp-agent.sh: $name does not start:" >&2
cat "$log" >&2
exit 1
