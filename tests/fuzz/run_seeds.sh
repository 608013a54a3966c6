#!/bin/bash
# run_seeds.sh TARGET SEEDS SECONDS: fuzzes from a copy of the seeds, which stay as they are. A fault ends it
# with an error and leaves the input that shows it in the current folder.
set -euo pipefail
target=$1 seeds=$2 seconds=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
[ ! -d "$seeds" ] || cp "$seeds"/* "$work/"
"$target" -max_total_time="$seconds" -max_len=2048 -print_final_stats=1 -verbosity=0 \
    -artifact_prefix="$(basename "$target")-" "$work" 2>&1 | tail -n 25
