#!/bin/bash
# build.sh [PRESET...]: configures and builds the presets (release, debug, ubsan, native); release by default.
set -euo pipefail
. "$(dirname "$0")/common.sh"

for tool in cmake ninja; do
    command -v $tool >/dev/null || Die "$tool is missing: run scripts/install-packages.sh as root"
done
cd "$ROOT"
[ $# -ne 0 ] || set -- release
for preset in "$@"; do
    Say "building $preset"
    Quietly cmake --preset "$preset" || Die "preset $preset cannot be configured"
    Quietly cmake --build --preset "$preset" -j "${VNDISCOVER_JOBS:-$(nproc)}" || Die "the $preset build failed"
done
