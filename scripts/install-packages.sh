#!/bin/bash
# install-packages.sh [PACKAGE...]: installs the missing packages for the build and the lab, and those named (Debian
# 12 and 13).
set -euo pipefail
. "$(dirname "$0")/common.sh"

# A|B for a package whose name differs between releases: the first one available is used.
PACKAGES=(
    # build
    cmake ninja-build g++-mingw-w64-x86-64-posix clang 'libclang-rt-dev|libclang-rt-14-dev' dpkg-dev patch xz-utils perl make
    googletest llvm libcli11-dev libcjson-dev libssl-dev libpugixml-dev
    # kit
    git lld pkg-config python3-yaml
    # lab
    wine64 iproute2 snmpd snmp 'wsdd|wsdd2' tshark python3 util-linux
    mono-mcs libmono-system-windows-forms4.0-cil # compiles the C# that VnBrowser offers
    # lint
    clang-format pyflakes3
)

PACKAGES+=("$@") # further ones that most runs do not need
missing=()
for names in "${PACKAGES[@]}"; do
    # shellcheck disable=SC2086 # one word each
    status=$(dpkg-query -W -f '${db:Status-Status} ' ${names//|/ } 2>/dev/null || true)
    [[ " $status" = *" installed "* ]] || missing+=("$names")
done
[ ${#missing[@]} -ne 0 ] || exit 0

command -v apt-get >/dev/null || Die "not a Debian system; please install: ${missing[*]}"
[ "$(id -u)" = 0 ] || Die "not root; please run as root: apt-get install --no-install-recommends ${missing[*]}"

Say "installing ${missing[*]}"
# Keeps packages from starting services, as snmpd would: the lab starts its own.
policy=/usr/sbin/policy-rc.d
if [ ! -e $policy ]; then
    printf '#!/bin/sh\nexit 101\n' >$policy
    chmod +x $policy
    trap 'rm -f $policy' EXIT
fi
export DEBIAN_FRONTEND=noninteractive
Quietly apt-get -q update || Say "apt-get update failed; trying with the existing lists"
# Candidate NAME...: the first that apt can install; if there is none, the first of all, for apt's message.
Candidate() {
    local name policy
    for name in "$@"; do
        policy=$(LC_ALL=C apt-cache policy "$name")
        if [[ $policy = *'Candidate: '[!\(]* ]]; then
            echo "$name"
            return
        fi
    done
    echo "$1"
}
# shellcheck disable=SC2086 # one word each
for i in "${!missing[@]}"; do missing[i]=$(Candidate ${missing[i]//|/ }); done
Quietly apt-get -q -y -o Dpkg::Use-Pty=0 install --no-install-recommends "${missing[@]}" ||
    Die "these packages could not be installed: ${missing[*]}"
