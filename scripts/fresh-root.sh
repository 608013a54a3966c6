#!/bin/bash
# fresh-root.sh 12|13 COMMAND [ARG...]: runs a command of this tree, with uncommitted changes, on a freshly installed,
# minimal Debian of that release: `scripts/fresh-root.sh 13 scripts/test.sh`. Returns its exit code.
#
# The root is a copy of one that debootstrap makes once in the cache, from the mirror that this machine's apt uses. It
# has its own mount as /, which `ip netns exec` needs, an empty /run, its own processes, which end with the command,
# and the machine's network, for packages. It is removed at the end. VNDISCOVER_FRESH_ROOT=FOLDER keeps it there for the
# next run, with what was installed and built in it; the tree is copied again. Root only.
set -euo pipefail
. "$(dirname "$0")/common.sh"

# In the new mount and process namespaces: makes the mounts, then changes the root.
if [ "${1:-}" = --inside ]; then
    root=$2
    shift 2
    mount --bind "$root" "$root"
    cd "$root"
    mount -t proc proc proc
    mount -t sysfs sysfs sys
    mount --rbind /dev dev
    mount -t tmpfs -o mode=755 tmpfs run
    mkdir -p old
    pivot_root . old
    cd /tree
    umount --lazy /old
    rmdir /old
    hash -r
    exec env -i PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 \
        ${VNDISCOVER_JOBS:+VNDISCOVER_JOBS="$VNDISCOVER_JOBS"} \
        ${VNDISCOVER_TEST_JOBS:+VNDISCOVER_TEST_JOBS="$VNDISCOVER_TEST_JOBS"} "$@"
fi

case ${1:-} in
12) codename=bookworm ;;
13) codename=trixie ;;
*) Die "usage: fresh-root.sh 12|13 COMMAND [ARG...]" ;;
esac
shift
[ $# -ne 0 ] || Die "usage: fresh-root.sh 12|13 COMMAND [ARG...]"
[ "$(id -u)" = 0 ] || Die "not root"
command -v debootstrap >/dev/null || Die "debootstrap is missing: apt-get install debootstrap"

# Archive LABEL: the URL from which this machine's apt gets it.
Archive() {
    # shellcheck disable=SC2016 # fields for apt
    apt-get indextargets --format '$(LABEL) $(REPO_URI)' 'Created-By: Packages' |
        awk -v label="$1" '$1 == label && !found++ { print $2 }'
}
mirror=$(Archive Debian)
[ -n "$mirror" ] || Die "apt knows no Debian mirror: run apt-get update"
security=$(Archive Debian-Security)

roots=$VNDISCOVER_CACHE/roots
base=$roots/$codename
mkdir -p "$roots"
exec 9>"$base.lock"
flock 9
if [ ! -e "$base/ready" ]; then
    Say "making a bare Debian $codename (a minute, once)"
    rm -rf "$base"
    mkdir -p "$base"
    Quietly debootstrap --variant=minbase --include=ca-certificates "$codename" "$base/root" "$mirror" ||
        Die "debootstrap failed"
    {
        echo "deb $mirror $codename main"
        echo "deb $mirror $codename-updates main"
        [ -z "$security" ] || echo "deb $security $codename-security main"
    } >"$base/root/etc/apt/sources.list"
    apt-config dump | grep -iE '^Acquire::https?::Proxy' >"$base/root/etc/apt/apt.conf.d/90proxy" || true
    rm -f "$base"/root/var/cache/apt/archives/*.deb
    touch "$base/ready"
fi
flock -u 9

root=${VNDISCOVER_FRESH_ROOT:-}
if [ -z "$root" ]; then
    root=$(mktemp -d "$roots/run.XXXXXX")/root
    trap 'rm -rf "$(dirname "$root")"' EXIT
fi
root=$(readlink -m "$root")
if [ ! -d "$root/tree" ]; then
    mkdir -p "$(dirname "$root")"
    cp -a "$base/root" "$root"
    mkdir -p "$root/tree"
fi
cp -L /etc/resolv.conf "$root/etc/resolv.conf"
# With .git, but without what was built here, for another release.
find "$root/tree" -mindepth 1 -maxdepth 1 ! -name build -exec rm -rf {} +
tar -C "$ROOT" --exclude=./build -cf - . | tar -C "$root/tree" --no-same-owner -xf -

status=0
unshare --mount --pid --fork --kill-child=KILL "$(readlink -f "$0")" --inside "$root" "$@" 9>&- || status=$?
exit $status
