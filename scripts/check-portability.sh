#!/bin/bash
# check-portability.sh: checks every source for Windows, tests included, with Clang in both of its Windows modes, GNU's
# and Visual C++'s, with all warnings about code that only one compiler accepts and those of Visual C++ at /W4. Builds
# nothing. It does not replace Visual C++, whose headers it does not have.
set -euo pipefail
. "$(dirname "$0")/common.sh"

. "$ROOT/scripts/clang-windows.sh"
cd "$ROOT"

WARNINGS=(-Werror -Wall -Wextra -Wpedantic -Wmicrosoft -Wgnu -Wvla -Wlanguage-extension-token -Wgcc-compat
    -Wunknown-attributes -Wunknown-pragmas -Wextra-semi -Wnull-dereference
    -Wimplicit-fallthrough -Wzero-as-null-pointer-constant -Wundef -Wreserved-id-macro -Wcast-function-type
    # /W4: lost bits, hidden names, uninitialised variables, unreachable code
    -Wshorten-64-to-32 -Wimplicit-int-conversion -Wshadow -Wconditional-uninitialized -Wunreachable-code)
# The language and ABI of Visual C++ with mingw's headers, which are told that the compiler is GCC.
MSVC=(-fms-compatibility-version=19.38 -U_MSC_VER -U_MSC_FULL_VER -U_MSC_BUILD
    -D__GNUC__=12 -D__GNUC_MINOR__=2 -D__GNUC_PATCHLEVEL__=0 -D__GXX_WEAK__=0 -D__MINGW32__ -D__MINGW64__ -D__STRICT_ANSI__
    -D__declspec=__declspec -D__GCC_ATOMIC_TEST_AND_SET_TRUEVAL=1 -isystem /usr/x86_64-w64-mingw32/include)
for type in BOOL POINTER CHAR CHAR16_T CHAR32_T WCHAR_T SHORT INT LONG LLONG; do MSVC+=(-D__GCC_ATOMIC_${type}_LOCK_FREE=2); done
# mingw's folder comes after that of the C++ headers, which use #include_next.
CXX=("${WINDOWS_CXX[@]}" -isystem /usr/src/googletest/googletest/include -isystem /usr/src/googletest/googlemock/include -Itests)

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

# The header, as hosts of every kind see it: before or after winsock2.h, after a whole windows.h, and with Windows headers
# that have no source annotations (SAL_HXX is the guard of mingw's sal.h).
for language in "c -std=c99" "c -std=c11" "c++ -std=c++11" "c++ -std=c++17"; do
    for order in 'vndiscover.h winsock2.h' 'winsock2.h vndiscover.h' 'windows.h vndiscover.h'; do
        for annotations in '' '-DSAL_HXX -Wno-reserved-id-macro'; do
            # shellcheck disable=SC2086 # words: a language and its option, options or none
            Check "vndiscover.h as ${language#*=} $annotations" -x $language $annotations - <<<"#include <${order% *}>
#include <${order#* }>"
        done
    done
done
Check examples/c/sweep.c -x c -std=c99 -pedantic examples/c/sweep.c

# What GCC alone has, even if a test for the compiler guards it.
if git grep -nE '__builtin_|__extension__|\[\[gnu::|<(unistd|strings)\.h>|\bssize_t\b|strn?casecmp' -- \
    src host include examples check 'tests/*.cpp' 'tests/*.h' ':!tests/native' ':!tests/fuzz'; then
    failed=1
fi

mapfile -t sources < <(find src host examples check tests -name '*.cpp' ! -path 'tests/native/*' ! -path 'tests/fuzz/*' | sort)
for mode in gnu msvc; do
    options=("${WINDOWS[@]}" "${WARNINGS[@]}" "${CXX[@]}")
    [ $mode = gnu ] || options=("${options[@]/x86_64-w64-windows-gnu/x86_64-pc-windows-msvc}" "${MSVC[@]}")
    printf '%s\0' "${sources[@]}" | xargs -0 -n 1 -P "${VNDISCOVER_JOBS:-$(nproc)}" "$CLANG" "${options[@]}" || failed=1
done
[ $failed = 0 ] || Die "see above"
Say "${#sources[@]} sources and the header: nothing that only one compiler accepts"
