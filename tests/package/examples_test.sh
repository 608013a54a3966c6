#!/bin/bash
# examples_test.sh HOSTS: runs the example hosts in a lab, one with a real agent on one of its two networks.
set -euo pipefail
[ -n "${VNDISCOVER_LAB:-}" ] || { # its sweeps must never leave by the machine's own network
    echo "examples_test.sh: not in a lab: start it through private-net.sh" >&2
    exit 2
}
hosts=$1
lab=$VNDISCOVER_LAB_SCRIPTS
failed=0

# Run PROGRAM [ARG...]: on the lab's host; leaves its exit code in status and what it printed in output.
Run() {
    status=0
    timeout 100 "$lab/wine-run.sh" host "$@" >output.raw 2>&1 </dev/null || status=$?
    tr -d '\r' <output.raw >output
}

# Expect WHAT STATUS PATTERN...: what Run left has this exit code and a line for each pattern.
Expect() {
    local what=$1 wanted=$2 pattern
    shift 2
    [ "$status" = "$wanted" ] || { echo "$what: exit code $status, not $wanted"; failed=1; }
    for pattern in "$@"; do
        grep -qE "$pattern" output || { echo "$what: no line with '$pattern' in:"; cat output; failed=1; }
    done
}

cd "$TMPDIR"
# Windows that paint, without a display. Read when the prefix's first window comes up, so set before any.
Run reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null
"$lab/wine-run.sh" --stop host
"$lab/snmp-agent.sh" neta printer >/dev/null <<'CONF'
agentAddress udp:161
rocommunity sesame
override .1.3.6.1.4.1.5963.43.5.1.1.1.1 octet_str "Model 1"
CONF

for sweep in sweep sweep_pkgconfig sweep_lib; do
    Run "$hosts/$sweep.exe"
    Expect $sweep 0 '^10\.77\.1\.2	Model 1$' '^end of the sweep$' '^1 answers$'
done
Run "$hosts/sweep.exe" wrong-community
Expect "sweep with a wrong community" 1 '^end of the sweep$' '^0 answers$'
if [ -e "$hosts/bare.exe" ]; then
    Run "$hosts/bare.exe"
    Expect bare.exe 42
fi

# Two networks of at least 2 s each; a window whose thread was held up by the sweep would paint a frame or two.
Run "$hosts/worker_sweep.exe" --once
Expect worker_sweep 0 '^10\.77\.1\.2  Model 1$' '^1 devices, [0-9]{2,} frames, complete$'

# A stop while the first network is still listened to: what has answered is not delivered.
Run "$hosts/worker_sweep.exe" --once --stop-after 1000
Expect "worker_sweep, stopped" 1 '^0 devices, [0-9]{2,} frames, stopped$'
exit $failed
