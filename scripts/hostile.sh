#!/bin/bash
# hostile.sh [ANSWERS [SEED]]: sweeps and asks a network whose devices answer with something malformed, until they
# have sent ANSWERS (default 100,000). The answers follow from SEED, which is printed; without one it varies.
set -euo pipefail
. "$(dirname "$0")/common.sh"
export VNDISCOVER_HOSTILE_ANSWERS=${1:-100000}
[ -z "${2:-}" ] || export VNDISCOVER_HOSTILE_SEED=$2

"$ROOT/scripts/install-packages.sh"
"$ROOT/scripts/build.sh" release
exec "$ROOT/scripts/lab/private-net.sh" "$ROOT/tests/hardening/run.sh" "$ROOT/build/release/bin/hardening_test.exe" \
    --gtest_filter='HostileNetwork.*'
