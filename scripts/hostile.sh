#!/bin/bash
# hostile.sh [ANSWERS [SEED]]: runs sweeps and requests in a network whose devices send malformed answers, until they
# have sent ANSWERS (default 100,000). SEED, which is printed, determines the answers; by default it varies.
set -euo pipefail
. "$(dirname "$0")/common.sh"
export VNDISCOVER_HOSTILE_ANSWERS=${1:-100000}
[ -z "${2:-}" ] || export VNDISCOVER_HOSTILE_SEED=$2

"$ROOT/scripts/install-packages.sh"
"$ROOT/scripts/build.sh" release
exec "$ROOT/scripts/lab/private-net.sh" "$ROOT/tests/hardening/run.sh" "$ROOT/build/release/bin/hardening_test.exe" \
    --gtest_filter='HostileNetwork.*'
