#!/bin/bash
# shards.sh PROGRAM [ARG...]: runs a GoogleTest program that waits more than it computes, a third of its tests in each
# namespace of a lab, with a registry of its own, at the same time. Inside scripts/lab/with-test-net.sh.
set -euo pipefail
nets=(host neta netb) shards=() failed=0
export GTEST_TOTAL_SHARDS=${#nets[@]}
for index in "${!nets[@]}"; do
    GTEST_SHARD_INDEX=$index "$VNDISCOVER_LAB_SCRIPTS/wine-run.sh" "${nets[$index]}" "$@" >"$VNDISCOVER_LAB/shard-$index" 2>&1 &
    shards+=($!)
done
for index in "${!shards[@]}"; do
    wait "${shards[$index]}" || failed=1
    cat "$VNDISCOVER_LAB/shard-$index"
done
exit $failed
