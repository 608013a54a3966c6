#!/bin/bash
# hostile.sh [ANSWERS [SEED]]: sweeps and asks a network whose devices answer with something malformed, until they
# have sent ANSWERS (default 100,000), and sends every malformed answer that is made systematically. The mutations
# follow from SEED (default 1).
set -euo pipefail
. "$(dirname "$0")/common.sh"
export VNDISCOVER_HOSTILE_ANSWERS=${1:-100000} VNDISCOVER_HOSTILE_SEED=${2:-1} VNDISCOVER_HARDENING_ALL=1

"$ROOT/scripts/install-packages.sh"
"$ROOT/scripts/build.sh" release
for test in "hostile HostileNetwork.*" "relay MalformedAnswers.*"; do
    "$ROOT/scripts/lab/private-net.sh" "$ROOT/tests/hardening/run.sh" "${test% *}" \
        "$ROOT/build/release/bin/hardening_test.exe" --gtest_brief=1 --gtest_filter="${test#* }"
done
