#!/bin/bash
# run.sh PROGRAM [ARG...]: runs a Windows test program in a new test network, inside scripts/lab/private-net.sh.
# PROGRAM and the files beside it are copied to a folder of the lab, into which a test may put files. Wine prefers files
# in the program's folder to the libraries that the tests imitate.
set -euo pipefail
lab=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/../../scripts/lab
program=$1
shift
"$lab/test-net.sh"
mkdir "$VNDISCOVER_LAB/bin"
cp "$program" "$(dirname "$program")"/{VnDiscover,decoy}.dll "$VNDISCOVER_LAB/bin"
cd "$TMPDIR" # the module's log file goes to the current folder
export WINEDLLOVERRIDES='icmp,iphlpapi,ws2_32,bcrypt,rsaenh=n,b'
exec "$lab/wine-run.sh" host "$VNDISCOVER_LAB/bin/$(basename "$program")" "$@"
