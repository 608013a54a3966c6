#!/bin/bash
# lint.sh [--fix]: checks the format of all sources, then checks every source of the programs and of the measurements
# with clang-tidy for the Windows target. With --fix it formats instead. Needs clang-format and clang-tidy.
set -euo pipefail
. "$(dirname "$0")/common.sh"

for tool in clang-format clang-tidy; do
    command -v $tool >/dev/null || Die "$tool is missing: apt-get install clang-format clang-tidy"
done
cd "$ROOT"
mapfile -t sources < <(git ls-files '*.cpp' '*.h' '*.c')
if [ "${1:-}" = --fix ]; then
    exec clang-format -i "${sources[@]}"
fi
clang-format --dry-run -Werror "${sources[@]}" || Die "not formatted: run scripts/lint.sh --fix"

. "$ROOT/scripts/clang-windows.sh"
benchmark=$("$ROOT/scripts/build-bench-deps.sh")
mapfile -t sources < <(git ls-files 'src/*.cpp' 'host/*.cpp' 'check/*.cpp' 'examples/*.cpp' 'bench/*.cpp')
printf '%s\0' "${sources[@]}" | xargs -0 -I{} -P "${VNDISCOVER_JOBS:-$(nproc)}" \
    clang-tidy --quiet {} -- "${WINDOWS[@]}" "${WINDOWS_CXX[@]}" -isystem "$benchmark/include" || Die "see above"
Say "${#sources[@]} sources: no finding"
