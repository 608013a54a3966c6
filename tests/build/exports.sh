#!/bin/bash
# exports.sh OBJDUMP DLL DEF HEADER: fails unless the DLL's export table, the definition file and the public
# header name the same functions. DllMain is exported but not for hosts to call, so the header leaves it out.
set -euo pipefail
objdump=$1 dll=$2 def=$3 header=$4
table=$("$objdump" -p "$dll" | sed -n '/\[Ordinal\/Name Pointer\] Table/,/^$/s/.*\] //p' | sed '/Table$/d' | sort)
defined=$(sed -n '/^EXPORTS/,$s/^ *\([A-Za-z0-9]\+\).*/\1/p' "$def" | sed '/^EXPORTS$/d' | sort)
declared=$( (
    echo DllMain
    grep -oP '^VN_API [A-Za-z0-9_]+ \K[A-Za-z0-9]+(?=\()' "$header"
) | sort)
[ -n "$table" ] || {
    echo "$dll exports nothing"
    exit 1
}
diff <(echo "$table") <(echo "$defined") || {
    echo "the export table (<) and $(basename "$def") (>) differ"
    exit 1
}
diff <(echo "$defined") <(echo "$declared") || {
    echo "$(basename "$def") (<) and $(basename "$header") (>) differ"
    exit 1
}
