#!/bin/bash
# lint.sh [--quick | --fix]: checks the format of all sources and, in a second, scripts and names of tests; then every source
# of the programs and of the measurements with clang-tidy for the Windows target, which takes minutes and needs clang-tidy.
# --quick: without clang-tidy, as every test run does. --fix: formats the sources instead.
#
# clang-format lays some code out differently from version to version, so one version decides, that of Debian 12. With
# another, as on Debian 13, the format is not checked, and the check says so. CLANG_FORMAT names the program, for example
# one from a Python wheel (pip install clang-format==14.0.6).
set -euo pipefail
. "$(dirname "$0")/common.sh"

FORMAT_VERSION=14
cd "$ROOT"
# Files into the array files: those of this tree with these names, even if it is no clone. None is an error.
Find() {
    local names=(-false) name
    for name in "$@"; do names+=(-o -name "$name"); done
    mapfile -t files < <(find . -path ./build -prune -o -path ./.git -prune -o -type f \( "${names[@]}" \) -print | sort)
    [ ${#files[@]} -gt 10 ] || Die "no files named $*"
}

format=${CLANG_FORMAT:-$(command -v clang-format-$FORMAT_VERSION || command -v clang-format)} ||
    Die "clang-format is missing: run scripts/install-packages.sh as root"
version=$("$format" --version)
Find '*.cpp' '*.h' '*.c'
if [[ $version != *"version $FORMAT_VERSION."* ]]; then
    [ "${1:-}" != --fix ] || Die "$version: version $FORMAT_VERSION decides the format, see above in this script"
    echo "skipped: the format of sources: clang-format $FORMAT_VERSION decides it, and this is $version"
elif [ "${1:-}" = --fix ]; then
    exec "$format" -i "${files[@]}"
else
    "$format" --dry-run -Werror "${files[@]}" || Die "not formatted: run scripts/lint.sh --fix"
fi
command -v pyflakes3 >/dev/null || Die "pyflakes3 is missing: run scripts/install-packages.sh as root"
Find '*.py'
pyflakes3 "${files[@]}" || Die "see above"
Find '*.sh'
for file in "${files[@]}"; do bash -n "$file" || Die "see above"; done
long=$(grep -rnE --include='*_test.*' 'TEST(_[FP])?\(\w+,\s*\w{46,}\)|def test_\w{46,}' tests || true)
[ -z "$long" ] || Die "names of tests have 45 characters at most: $long"
unpainted=$(grep -rlPz 'MoveWindow\([^;]*,\s*(?i:FALSE|0)\s*\)' host || true)
[ -z "$unpainted" ] || Die "MoveWindow(..., FALSE) leaves pixels of before; use Placement: $unpainted"
[ "${1:-}" != --quick ] || exit 0

command -v clang-tidy >/dev/null || Die "clang-tidy is missing: apt-get install clang-tidy"
. "$ROOT/scripts/clang-windows.sh"
benchmark=$("$ROOT/scripts/build-bench-deps.sh")
mapfile -t sources < <(git ls-files 'src/*.cpp' 'host/*.cpp' 'check/*.cpp' 'examples/*.cpp' 'bench/*.cpp')
printf '%s\0' "${sources[@]}" | xargs -0 -I{} -P "${VNDISCOVER_JOBS:-$(nproc)}" \
    clang-tidy --quiet {} -- "${WINDOWS[@]}" "${WINDOWS_CXX[@]}" -isystem "$benchmark/include" || Die "see above"
Say "${#sources[@]} sources: no finding"
