#!/bin/bash
# bench.sh: measures the module in a private lab under Wine and prints a table of the results. Raw results,
# results.json and growth.svg go to build/bench. Installs what is missing and builds; takes about ten minutes. Figures
# are most accurate on an idle machine, but the two sides of every ratio are measured in turns within one run.
set -euo pipefail
. "$(dirname "$0")/common.sh"

"$ROOT/scripts/install-packages.sh" libsnmp-dev libssl-dev gcc libc6-dev
out=$ROOT/build/bench
mkdir -p "$out/bin"
cd "$ROOT"
Say "building"
Quietly cmake --preset release -B "$out/win" -DVNDISCOVER_BUILD_TESTS=OFF -DVNDISCOVER_BUILD_BENCH=ON ||
    Die "the measurements cannot be configured"
Quietly cmake --build "$out/win" -j "${VNDISCOVER_JOBS:-$(nproc)}" \
    --target vndiscover_bench vndiscover_one_sweep vndiscover_window_watch VnBrowser || Die "the build failed"
cp "$out"/win/bin/*.exe "$out"/win/bin/*.dll "$out/bin/"
cc -O2 -Wall -Wextra -o "$out/bin/answerer" bench/native/answerer.c
cc -O2 -Wall -Wextra -o "$out/bin/netsnmp_loop" bench/native/netsnmp_loop.c -lnetsnmp
cc -O2 -Wall -Wextra -o "$out/bin/netsnmp_v3" bench/native/netsnmp_v3.c -lnetsnmp
cc -O2 -Wall -Wextra -o "$out/bin/v3_devices" bench/native/v3_devices.c -lcrypto
"$ROOT/scripts/lab/wine-template.sh" >/dev/null
cd "$out"
"$ROOT/scripts/lab/private-net.sh" "$ROOT/bench/lab.sh" "$out/bin"
PYTHONDONTWRITEBYTECODE=1 python3 "$ROOT/bench/report.py" "$out"
