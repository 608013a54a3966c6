#!/bin/bash
# lab.sh BIN: runs the measurements of the programs in BIN inside private-net.sh (scripts/bench.sh starts it).
# Writes raw results into the current folder, and keeps those of groups that are not run again.
#   BENCH_GROUPS       some of: directed keys library growth collection codec v3 window; all by default
#   BENCH_REPETITIONS  of each sweep in the group growth; 3 by default
set -euo pipefail
here=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
lab=$here/../scripts/lab
bin=$1
Say() { printf '== %s\n' "$*" >&2; }

"$lab/test-net.sh"
ip netns del netb # so that a sweep has one adapter
# Other work on the machine should disturb the measurements as little as possible.
renice -n -10 -p $$ >/dev/null 2>&1 || true

agent=$("$lab/snmp-agent.sh" neta agent <<'END'
agentAddress udp:10.77.1.11:161
rocommunity sesame
psysName bench
createUser shaaes SHA authpass1 AES privpass1
rouser shaaes priv
END
)
exec 3< <(exec ip netns exec neta "$bin/answerer" 10.77.1.2)
read -r -t 20 word <&3 && [ "$word" = ready ] || { echo "lab.sh: no answerer" >&2; exit 1; }

Wine() { "$lab/wine-run.sh" host "$@" </dev/null | tr -d '\r'; }

Wanted() { case " ${BENCH_GROUPS:-directed keys library growth collection codec v3 window} " in *" $1 "*) ;; *) return 1 ;; esac }
# Group NAME FILTER: benchmarks into bench-NAME.json and bench-NAME.log.
Group() {
    Wanted "$1" || return 0
    Say "$1"
    Wine "$bin/vndiscover_bench.exe" --benchmark_filter="$2" --benchmark_counters_tabular=true \
        --benchmark_out="bench-$1.json" --benchmark_out_format=json >"bench-$1.log" 2>&1
}

Library() {
    Say "net-snmp's library on the same agent"
    MIBS='' ip netns exec host "$bin/netsnmp_loop" 10.77.1.11 >netsnmp.json 2>netsnmp.log
}

# Lines "DEVICES KEYS" ('-': not in JSON mode), each for a sweep in its own process.
Growth() {
    Say "growth: devices, JSON keys, memory"
    : >sweeps.jsonl
    local devices keys
    while read -r devices keys; do
        for _ in $(seq "${BENCH_REPETITIONS:-3}"); do
            Wine "$bin/vndiscover_one_sweep.exe" "$devices" "$keys" >>sweeps.jsonl
        done
    done <<'END'
0 -
1 -
10 -
100 -
1000 -
8000 -
8192 -
1 1
10 1
100 1
1000 1
8000 1
100 0
1000 0
8000 0
100 10
100 50
END
}

# ManyDevices AUTH PRIV: thousands of SNMPv3 devices in one process, which also answers SNMPv1. They need the agent's port.
ManyDevices() {
    kill "$agent" 2>/dev/null || true
    ip -n neta route replace local 10.80.0.0/16 dev lo
    ip -n host route replace 10.80.0.0/16 via 10.77.1.2
    exec 4< <(exec ip netns exec neta "$bin/v3_devices" 10.80.0.1 8192 "$1" "$2")
    devices=$!
    read -r -t 20 word <&4 && [ "$word" = ready ] || { echo "lab.sh: no v3_devices" >&2; exit 1; }
}

V3() {
    Say "SNMPv3: sweeps of 8,192 devices"
    : >sweeps-v3.jsonl
    local auth priv authLabel privLabel
    while read -r auth priv authLabel privLabel; do
        ManyDevices "$auth" "$priv"
        if [ "$auth" = sha256 ]; then
            Wine "$bin/vndiscover_one_sweep.exe" 8192 0 - - >>sweeps-v3.jsonl
            Wine "$bin/vndiscover_one_sweep.exe" 8192 1 - - >>sweeps-v3.jsonl
            MIBS='' ip netns exec host "$bin/netsnmp_v3" 10.80.0.1 2000 >netsnmp-v3.json 2>netsnmp-v3.log
        fi
        Wine "$bin/vndiscover_one_sweep.exe" 8192 - "$authLabel" "$privLabel" >>sweeps-v3.jsonl
        kill "$devices"
    done <<'END'
sha256 aes SHA-2(256) AES
sha1 des SHA1 DES
md5 des MD5 DES
END
}

Window() {
    Say "VnBrowser.exe: a sweep of 8,192 devices"
    ManyDevices sha256 aes
    : >window.jsonl
    for _ in 1 2 3 4 5; do
        Wine "$bin/vndiscover_window_watch.exe" 8192 >>window.jsonl || Say "a run failed, see window.jsonl"
    done
    kill "$devices"
}

Group directed '^Directed'
Group keys '^LocalisedKey'
if Wanted library; then Library; fi
if Wanted growth; then Growth; fi
Group collection '^(Burst|CollectionCost|SteadyRate)'
Group codec '^(EncodeV|DecodeV|One|AuthPriv)'
if Wanted v3; then V3; fi  # it ends the agent
if Wanted window; then Window; fi
