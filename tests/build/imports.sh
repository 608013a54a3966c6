#!/bin/bash
# imports.sh OBJDUMP FILE [DLL...]: fails when FILE imports a DLL that is neither among those that the module
# may import nor named here. iphlpapi, icmp and bcrypt are not among them: they are looked up at run time.
set -euo pipefail
objdump=$1 file=$2
shift 2
allowed='kernel32 msvcrt ucrtbase api-ms-win-crt-.* ws2_32 advapi32 user32'
pattern=$(printf '%s ' $allowed "$@" | sed 's/ $//; s/ /|/g')
imports=$("$objdump" -p "$file" | sed -n 's/^\tDLL Name: //p')
[ -n "$imports" ] || {
    echo "$file has no import table"
    exit 1
}
if others=$(grep -Eixv "($pattern)\.dll" <<<"$imports"); then
    echo "$file imports" $others
    exit 1
fi
