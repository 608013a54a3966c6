#!/bin/bash
# The example of README.md, built as it stands there, finds an agent.
set -euo pipefail
"$VNDISCOVER_LAB_SCRIPTS/test-net.sh"
"$VNDISCOVER_LAB_SCRIPTS/snmp-agent.sh" neta agent >/dev/null <<'END'
agentAddress udp:161
rocommunity sesame
override .1.3.6.1.4.1.5963.43.5.1.1.1.1 octet_str "Model 1"
END
output=$("$VNDISCOVER_LAB_SCRIPTS/wine-run.sh" host "$VNDISCOVER_BIN/first_use.exe" | tr -d '\r')
expected=$'10.77.1.2\tModel 1\nthe sweep is over'
[ "$output" = "$expected" ] || {
    printf 'expected:\n%s\ngot:\n%s\n' "$expected" "$output"
    exit 1
}
