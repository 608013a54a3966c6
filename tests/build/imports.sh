#!/bin/bash
# imports.sh OBJDUMP FILE...: fails when a file is missing or imports a DLL that is not on the list.
# iphlpapi, icmp and bcrypt are not on it: they are looked up at run time.
set -euo pipefail
objdump=$1
shift
status=0
for file in "$@"; do
    imports=$("$objdump" -p "$file" | sed -n 's/^\tDLL Name: //p')
    [ -n "$imports" ] || { echo "$file: no import table"; status=1; }
    others=$(grep -Eixv '(kernel32|msvcrt|ucrtbase|api-ms-win-crt-.*|ws2_32|advapi32|user32)\.dll' \
        <<<"$imports") || true
    [ -z "$others" ] || { echo "$file imports" $others; status=1; }
done
exit $status
