#!/bin/bash
# lint.sh [--fix]: checks the format of all sources, then runs clang-tidy over the portable code (the native
# build's compile commands). With --fix it formats instead. Needs clang-format and clang-tidy.
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
clang-format --dry-run -Werror "${sources[@]}" || Die "not formatted; scripts/lint.sh --fix does it"

[ -e build/native/compile_commands.json ] || scripts/build.sh native
mapfile -t portable < <(sed -n 's/^ *"file": "\(.*\/\(src\|host\)\/.*\)".*/\1/p' build/native/compile_commands.json | sort -u)
printf '%s\n' "${portable[@]}" | xargs -P "$(nproc)" -n 4 clang-tidy -p build/native --quiet
