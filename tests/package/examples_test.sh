#!/bin/bash
# examples_test.sh HOSTS: runs the example hosts in a lab, one with a real agent on one of its two networks.
set -euo pipefail
[ -n "${VNDISCOVER_LAB:-}" ] || { # its sweeps must never leave by the machine's own network
    echo "examples_test.sh: not in a lab: start it through private-net.sh" >&2
    exit 2
}
hosts=$1 lab=$VNDISCOVER_LAB_SCRIPTS

# Check COMMAND STATUS PATTERN...: the program ends with this exit code and prints a line for each pattern.
Check() {
    local command=$1 wanted=$2 status=0 output pattern
    shift 2
    # shellcheck disable=SC2086 # words of a command
    output=$(timeout 100 "$lab/wine-run.sh" host "$hosts"/$command 2>&1 </dev/null | tr -d '\r') || status=$?
    for pattern in "$@"; do
        [ $status = "$wanted" ] && grep -qE "$pattern" <<<"$output" || {
            printf "%s: exit code %s, not %s, or no line with '%s':\n%s\n" "$command" $status "$wanted" "$pattern" "$output"
            return 1
        }
    done
}

cd "$TMPDIR"
# Windows that paint, without a display. Read when the prefix's first window comes up, so set before any.
"$lab/wine-run.sh" host reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null >/dev/null
"$lab/wine-run.sh" --stop host
"$lab/snmp-agent.sh" neta printer >/dev/null <<'CONF'
agentAddress udp:161
rocommunity sesame
override .1.3.6.1.4.1.5963.43.5.1.1.1.1 octet_str "Model 1"
CONF

checks=() failed=0
Start() { # at the same time, since they mostly wait
    Check "$@" &
    checks+=($!)
}
for sweep in sweep sweep_pkgconfig sweep_lib; do
    Start $sweep.exe 0 '^10\.77\.1\.2	Model 1$' '^end of the sweep$' '^1 answers$'
done
Start 'sweep.exe wrong-community' 1 '^end of the sweep$' '^0 answers$'
[ ! -e "$hosts/bare.exe" ] || Start bare.exe 42 ''
# Two networks of at least 2 s each; a window whose thread was held up by the sweep would paint a frame or two.
Start 'worker_sweep.exe --once' 0 '^10\.77\.1\.2  Model 1$' '^1 devices, [0-9]{2,} frames, complete$'
# A stop while the first network is still listened to: what has answered is not delivered.
Start 'worker_sweep.exe --once --stop-after 1000' 1 '^0 devices, [0-9]{2,} frames, stopped$'
for check in "${checks[@]}"; do wait "$check" || failed=1; done
exit $failed
