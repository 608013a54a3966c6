#!/bin/bash
# install-packages.sh [PACKAGE...]: installs what the build and the lab need and this machine lacks, and the
# packages named (Debian).
set -euo pipefail
. "$(dirname "$0")/common.sh"

PACKAGES=(
    # build
    cmake ninja-build g++-mingw-w64-x86-64-posix clang libclang-rt-14-dev dpkg-dev patch xz-utils perl make
    googletest llvm libcli11-dev libcjson-dev libssl-dev libpugixml-dev
    # kit
    git lld pkg-config
    # lab
    wine64 iproute2 snmpd snmp wsdd tshark python3 util-linux
)

PACKAGES+=("$@") # further ones, which most runs do not need
missing=()
for package in "${PACKAGES[@]}"; do
    status=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -ne 0 ] || exit 0

command -v apt-get >/dev/null || Die "not a Debian system; please install: ${missing[*]}"
[ "$(id -u)" = 0 ] || Die "not root; please run as root: apt-get install --no-install-recommends ${missing[*]}"

Say "installing ${missing[*]}"
# Packages may start services of their own (snmpd does): the lab brings its own, so none is started.
policy=/usr/sbin/policy-rc.d
if [ ! -e $policy ]; then
    printf '#!/bin/sh\nexit 101\n' >$policy
    chmod +x $policy
    trap 'rm -f $policy' EXIT
fi
export DEBIAN_FRONTEND=noninteractive
Install() { Quietly apt-get -q -y -o Dpkg::Use-Pty=0 install --no-install-recommends "${missing[@]}"; }
Quietly apt-get -q update || Say "apt-get update failed; trying with the lists that are here"
Install || Die "these packages could not be installed: ${missing[*]}"
