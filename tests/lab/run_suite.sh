#!/bin/bash
# run_suite.sh EXE FILTER: runs a part of exports_test.exe in the lab, with relay.py playing the devices.
set -euo pipefail
here=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
scripts=$here/../../scripts/lab
exe=$1 filter=$2

if [ -e "$here/relay.py" ]; then
    exec 3< <(exec env PYTHONDONTWRITEBYTECODE=1 ip netns exec host python3 "$here/relay.py" 2>&1)
    while read -r -t 20 line <&3; do
        [[ $line != ready* ]] || break
        echo "relay: $line"
    done
    [[ ${line:-} == ready* ]] || {
        echo "run_suite.sh: relay.py does not get ready"
        exit 1
    }
    # What it says later belongs to the test's output too.
    sed -u 's/^/relay: /' <&3 &
fi

# The current folder is the log file's: one of this lab's own.
cd "$TMPDIR"
status=0
"$scripts/wine-run.sh" host "$exe" --gtest_filter="$filter" >"$VNDISCOVER_LAB/output" 2>&1 || status=$?
tr -d '\r' <"$VNDISCOVER_LAB/output"
if [ $status = 0 ] && ! grep -q '\[  PASSED  \] [1-9]' "$VNDISCOVER_LAB/output"; then
    echo "run_suite.sh: no test matched $filter"
    exit 1
fi
exit $status
