#!/bin/bash
# run.sh PROGRAM [ARG...]: runs a Windows test program in a new test network, inside scripts/lab/private-net.sh.
# PROGRAM and what lies beside it run from a folder of the lab, into which a test may put files. The lab's folder
# "full" is a disk of 16 KB. Wine prefers files in the program's folder to the libraries that the tests set traps for.
set -euo pipefail
lab=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/../../scripts/lab
program=$1
shift

"$lab/test-net.sh"
mkdir -p "$VNDISCOVER_LAB/bin" "$VNDISCOVER_LAB/full"
cp "$program" "$(dirname "$program")"/{VnDiscover,decoy}.dll "$VNDISCOVER_LAB/bin"
mount -t tmpfs -o size=16k tmpfs "$VNDISCOVER_LAB/full"
cd "$TMPDIR" # the module's log file goes to the current folder
export WINEDLLOVERRIDES='icmp,iphlpapi,ws2_32,bcrypt=n,b'
exec "$lab/wine-run.sh" host "$VNDISCOVER_LAB/bin/$(basename "$program")" "$@"
