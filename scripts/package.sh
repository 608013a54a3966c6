#!/bin/bash
# package.sh [FOLDER]: makes the release ZIP of the kit for host developers, even from a fresh clone: installs what
# is missing, builds, packs. Copies the ZIP and its checksum to FOLDER if one is named; prints the ZIP's path. A
# commit gives the same bytes in any folder.
set -euo pipefail
. "$(dirname "$0")/common.sh"

out=${1:-}
[ -z "$out" ] || out=$(readlink -m "$out")
"$ROOT/scripts/install-packages.sh"
cd "$ROOT"
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)} || Die "no commit to take the time from"
export SOURCE_DATE_EPOCH TZ=UTC LC_ALL=C
# Documents and examples are packed even if the commit does not contain them.
if [ -n "$(git status --porcelain 2>/dev/null)" ]; then
    Say "uncommitted changes: the ZIP will differ from the commit's"
fi

build=build/package
# Removes what an earlier package left.
rm -rf $build/package $build/_CPack_Packages $build/kit
Say "building the kit"
Quietly cmake --preset package || Die "preset package cannot be configured"
Quietly cmake --build --preset package -j "${VNDISCOVER_JOBS:-$(nproc)}" || Die "the build failed"
[ -e $build/kit/sbom.cdx.json ] || Die "a version or a licence text is missing: cmake --preset package says which"
(cd $build && Quietly cpack) || Die "the ZIP could not be made"

cd $build/package
zip=$(ls VnDiscover-*.zip)
sha256sum "$zip" >"$zip.sha256"
[ -z "$out" ] || { mkdir -p "$out" && cp "$zip" "$zip.sha256" "$out/"; }
Say "$(cat "$zip.sha256")"
echo "${out:-$PWD}/$zip"
