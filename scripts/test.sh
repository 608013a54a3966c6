#!/bin/bash
# test.sh [PRESET]: installs what is missing, builds, and runs all tests; PRESET is release (the default) or
# ubsan. The native tests under ASan and UBSan are part of every run. Ends with ctest's summary, and with what was skipped.
set -euo pipefail
. "$(dirname "$0")/common.sh"

preset=${1:-release}
case $preset in release | ubsan) ;; *) Die "no preset '$preset' for tests: release or ubsan" ;; esac

"$ROOT/scripts/install-packages.sh"
native=$ROOT/build/native
export CMAKE_BUILD_PARALLEL_LEVEL=${VNDISCOVER_JOBS:-$(nproc)}
cd "$ROOT"
"$ROOT/scripts/build.sh" native
Say "building $preset"
Quietly cmake --preset "$preset" -DVNDISCOVER_NATIVE_BUILD="$native" || Die "preset $preset cannot be configured"
Quietly cmake --build --preset "$preset" || Die "the $preset build failed"
"$ROOT/scripts/lab/wine-template.sh" >/dev/null
"$ROOT/scripts/lab/private-net.sh" true ||
    Die "no private network can be made here (see above): needs root, or unprivileged user namespaces"

# The labs mostly wait, so more of them run at once than there are processors.
status=0
ctest --test-dir "build/$preset" --parallel "${VNDISCOVER_TEST_JOBS:-$((3 * $(nproc)))}" --output-on-failure \
    --no-tests=error </dev/null || status=$?
# What was skipped on this machine, with the reasons.
awk '/: Skipped$/ { getline; print "skipped: " $0 } /^skipped: /' "build/$preset/Testing/Temporary/LastTest.log" | sort -u >&2
exit $status
