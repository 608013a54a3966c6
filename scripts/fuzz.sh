#!/bin/bash
# fuzz.sh [SECONDS]: runs each fuzz target for SECONDS (default 600), two at a time, starting from the seeds in
# tests/fuzz/corpus, then measures which lines of the portable code the inputs reach. The inputs are kept in
# build/fuzz/found. A fault ends the run with an error, and its input is kept in build/fuzz.
set -euo pipefail
. "$(dirname "$0")/common.sh"
seconds=${1:-600}

"$ROOT/scripts/install-packages.sh"
Quietly cmake --preset native -S "$ROOT"
Quietly cmake --build "$ROOT/build/native" -j "$(nproc)"
mkdir -p "$ROOT/build/fuzz/found"
cd "$ROOT/build/fuzz"

Fuzz() {
    local target=$1 found=found/${1#fuzz_}
    mkdir -p "$found"
    "$ROOT/build/native/bin/$target" -max_total_time="$2" -max_len=2048 -print_final_stats=1 -verbosity=0 \
        -artifact_prefix="$target-" "$found" "$ROOT/tests/fuzz/corpus/${target#fuzz_}" >"$target.log" 2>&1 || {
        echo "$target failed:" >&2
        tail -n 40 "$target.log" >&2
        return 1
    }
    echo "$target: $(sed -n 's/stat::number_of_executed_units: *//p' "$target.log") inputs in $2 s," \
        "$(ls "$found" | wc -l) kept"
}
export -f Fuzz
export ROOT
targets=$(cd "$ROOT/tests/fuzz" && ls fuzz_*.cpp | sed 's/\.cpp$//')
xargs -P 2 -I{} bash -c "Fuzz {} $seconds" <<<"$targets"

# A separate build, since coverage and sanitizers would slow each other down.
Quietly cmake -S "$ROOT" -B "$ROOT/build/coverage" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_C_COMPILER=clang \
    -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_CXX_FLAGS="-fprofile-instr-generate -fcoverage-mapping"
# shellcheck disable=SC2086 # a list of words
Quietly cmake --build "$ROOT/build/coverage" -j "$(nproc)" --target $targets
binaries=()
for target in $targets; do
    LLVM_PROFILE_FILE=$target.profraw "$ROOT/build/coverage/bin/$target" -runs=0 "found/${target#fuzz_}" \
        "$ROOT/tests/fuzz/corpus/${target#fuzz_}" >/dev/null 2>&1
    binaries+=("$ROOT/build/coverage/bin/$target")
done
llvm-profdata merge -sparse ./*.profraw -o all.profdata
llvm-cov report "${binaries[0]}" "${binaries[@]/#/-object=}" -instr-profile=all.profdata \
    -ignore-filename-regex='/tests/' | tee coverage.txt
