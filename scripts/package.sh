#!/bin/bash
# package.sh [FOLDER]: makes the release ZIP of the host developer's kit from a fresh clone: installs what is
# missing, builds, packs. Copies ZIP and checksum to FOLDER if one is named; prints the ZIP's path.
# The same commit gives the same bytes, in whatever folder.
set -euo pipefail
. "$(dirname "$0")/common.sh"

out=${1:-}
[ -z "$out" ] || out=$(readlink -m "$out")
"$ROOT/scripts/install-packages.sh"
cd "$ROOT"
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)} || Die "no commit to take the time from"
export SOURCE_DATE_EPOCH TZ=UTC LC_ALL=C
# Documents and examples that the commit does not hold would be packed all the same.
if [ -n "$(git status --porcelain 2>/dev/null)" ]; then
    Say "uncommitted changes: the ZIP will not be that of the commit"
fi

build=build/package
# Nothing of an earlier package may be taken for this one's.
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
