#!/bin/bash
# check-portability.sh: reads every source of the product and of the example hosts with Clang, for the Windows
# target and with every warning on about what only GCC or only one compiler takes. Builds nothing. It is no
# substitute for Visual C++, whose own headers it does not have.
set -euo pipefail
. "$(dirname "$0")/common.sh"
. "$ROOT/scripts/clang-windows.sh"
cd "$ROOT"

WARNINGS=(-Werror -Wall -Wextra -Wpedantic -Wmicrosoft -Wgnu -Wvla -Wlanguage-extension-token -Wgcc-compat
    -Wunknown-attributes -Wunknown-pragmas -Wextra-semi -Wnull-dereference
    -Wimplicit-fallthrough -Wzero-as-null-pointer-constant -Wundef -Wreserved-id-macro -Wcast-function-type)

failed=0
# Check NAME OPTION...
Check() {
    local name=$1
    shift
    "$CLANG" "${WINDOWS[@]}" "${WARNINGS[@]}" "$@" || {
        echo "$name: not portable" >&2
        failed=1
    }
}

# The header, as hosts of every kind see it: before or behind winsock2.h, or behind a whole windows.h.
for language in "c -std=c99" "c -std=c11" "c++ -std=c++11" "c++ -std=c++17"; do
    for order in 'vndiscover.h winsock2.h' 'winsock2.h vndiscover.h' 'windows.h vndiscover.h'; do
        # shellcheck disable=SC2086 # a language and its option
        Check "vndiscover.h as ${language#*=}" -x $language - <<<"#include <${order% *}>
#include <${order#* }>"
    done
done
Check examples/c/sweep.c -x c -std=c99 -pedantic examples/c/sweep.c

# Guarded or not, what GCC alone has: where it is needed, it stands behind a test for the compiler.
if git grep -nE '__builtin_|__extension__|\[\[gnu::|<(unistd|strings)\.h>|\bssize_t\b|strn?casecmp' -- \
    src host include examples; then
    failed=1
fi

mapfile -t sources < <(find src host examples -name '*.cpp' | sort)
printf '%s\0' "${sources[@]}" | xargs -0 -n 1 -P "${VNDISCOVER_JOBS:-$(nproc)}" \
    "$CLANG" "${WINDOWS[@]}" "${WARNINGS[@]}" "${WINDOWS_CXX[@]}" || failed=1
[ $failed = 0 ] || Die "see above"
Say "${#sources[@]} sources and the header: nothing that only one compiler takes"
