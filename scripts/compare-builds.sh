#!/bin/bash
# compare-builds.sh: builds the release ZIP of the current commit twice, from clones in two folders with different
# names, rebuilding the libraries for the second, and compares the bytes. Fails if they differ.
set -euo pipefail
. "$(dirname "$0")/common.sh"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
commit=$(git -C "$ROOT" rev-parse HEAD)
# Build NAME: clones the commit into a folder of that name and packs it into $work/zip-NAME.
Build() {
    Say "build $1 of $commit"
    git clone -q --no-checkout "$ROOT" "$work/$1/tree"
    git -C "$work/$1/tree" checkout -q --detach "$commit"
    (cd "$work/$1/tree" && ./scripts/package.sh "$work/zip-$1") >/dev/null || Die "build $1 failed"
    rm -rf "${work:?}/$1"
}
Build one
VNDISCOVER_CACHE=$work/cache Build another-with-a-longer-name

# Contents NAME: the checksum of every file in its ZIP.
Contents() {
    mkdir "$work/files"
    (cd "$work/files" && python3 -m zipfile -e "$work/zip-$1"/*.zip . && find . -type f -print0 | sort -z |
        xargs -0 sha256sum)
    rm -rf "$work/files"
}
(cd "$work" && sha256sum zip-*/*.zip)
if cmp -s "$work"/zip-one/*.zip "$work"/zip-another-with-a-longer-name/*.zip; then
    echo "equal"
    exit 0
fi
diff <(Contents one) <(Contents another-with-a-longer-name) || true
Die "the two builds differ"
