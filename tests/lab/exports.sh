#!/bin/bash
# exports.sh PROGRAM [ARG...]: runs a Windows test program in a new test network, with relay.py playing the
# devices. Inside private-net.sh:
#     scripts/lab/private-net.sh tests/lab/exports.sh build/release/bin/exports_test.exe --gtest_filter=...
set -euo pipefail
here=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
lab=$here/../../scripts/lab

"$lab/test-net.sh"
exec 3< <(exec env PYTHONDONTWRITEBYTECODE=1 python3 "$here/relay.py" 2>&1)
read -r -t 20 word <&3 && [ "$word" = ready ] || {
    echo "exports.sh: relay.py does not get ready: ${word:-}"
    exit 1
}
# What it says later belongs to the test's output too.
sed -u 's/^/relay: /' <&3 &

cd "$TMPDIR" # the module's log file goes to the current folder
status=0
"$lab/wine-run.sh" host "$@" >"$VNDISCOVER_LAB/output" 2>&1 || status=$?
tr -d '\r' <"$VNDISCOVER_LAB/output"
exit $status
