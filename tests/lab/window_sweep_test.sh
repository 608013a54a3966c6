#!/bin/bash
# VnBrowser.exe for scripts keeps the answers that vndiscover.exe prints, and its exit codes tell of none.
set -euo pipefail
lab=$VNDISCOVER_LAB_SCRIPTS
"$lab/demo-net.sh"
Wine() { "$lab/wine-run.sh" host "$@"; }
Wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f >/dev/null
"$lab/wine-run.sh" --stop host
cd "$VNDISCOVER_LAB"
Wine "$VNDISCOVER_BIN/vndiscover.exe" sweep --format json >console.json
Wine "$VNDISCOVER_BIN/VnBrowser.exe" --sweep --save scan.json --exit
python3 - <<'END'
import json
scan = json.load(open("scan.json"))
kept = sorted((a["address"], a["text"]) for a in scan["answers"]
              if scan["sweeps"][a["sweep"]]["kind"] == "snmpv1")
printed = sorted((d["address"], d["value"]) for d in json.load(open("console.json")))
assert kept == printed and len(kept) >= 3, (kept, printed)
END
status=0
Wine "$VNDISCOVER_BIN/VnBrowser.exe" --save scan.json || status=$?
[ $status = 2 ]
# A file that cannot be written: said, and no hang.
status=0
Wine "$VNDISCOVER_BIN/VnBrowser.exe" --sweep --save no-such-folder/scan.json --exit || status=$?
[ $status = 2 ]
