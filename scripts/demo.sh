#!/bin/bash
# demo.sh: shows VnDiscover at work with real agents. Installs what is missing, builds, makes a private lab
# network, runs vndiscover.exe in it under Wine, and always takes the lab down again.
set -euo pipefail
. "$(dirname "$0")/common.sh"

"$ROOT/scripts/install-packages.sh"
cd "$ROOT"
Say "building"
Quietly cmake --preset release || Die "preset release cannot be configured"
Quietly cmake --build --preset release --target vndiscover_host || Die "the build failed"
"$ROOT/scripts/lab/wine-template.sh" >/dev/null
"$ROOT/scripts/lab/private-net.sh" true ||
    Die "no private network can be made here (see above): needs root, or unprivileged user namespaces"
VNDISCOVER_BIN=$ROOT/build/release/bin exec "$ROOT/scripts/lab/private-net.sh" "$ROOT/scripts/lab/demo-lab.sh"
