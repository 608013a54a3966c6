#!/bin/bash
# Builds the static libraries that the Windows programs link (cJSON, OpenSSL's libcrypto, pugixml) and copies
# CLI11's headers, once, into the cache. Prints the prefix: include/, lib/, licenses/, versions.txt.
set -euo pipefail
. "$(dirname "$0")/common.sh"
. "$(dirname "$0")/cross-deps.sh"

OPENSSL_OPTIONS="no-shared no-tests no-tls no-dtls no-engine no-legacy no-dso no-threads no-sock
    no-ui-console no-cmp no-cms no-ct no-ocsp no-ts no-ec no-dh no-dsa"

policy=$(LC_ALL=C apt-cache policy libcjson-dev libssl-dev libpugixml-dev libcli11-dev)
CJSON=$(Candidate libcjson-dev <<<"$policy")
OPENSSL=$(Candidate libssl-dev <<<"$policy")
PUGIXML=$(Candidate libpugixml-dev <<<"$policy")
CLI11=$(Candidate libcli11-dev <<<"$policy")
for version in "$CJSON" "$OPENSSL" "$PUGIXML" "$CLI11"; do
    [ -n "$version" ] && [ "$version" != "(none)" ] || Die "apt does not know every library: run apt-get update"
done

# The key: versions, compiler, flags, and the recipe's number (increase it when the steps below change their
# output).
RECIPE=4
key=$({
    echo "$RECIPE $CJSON $OPENSSL $PUGIXML $CLI11 $CFLAGS" $OPENSSL_OPTIONS
    "$CC" --version | sed -n 1p
} | sha256sum | cut -c 1-16)
prefix=$VNDISCOVER_CACHE/deps/$TRIPLE-$key
if [ -e "$prefix/versions.txt" ]; then
    echo "$prefix"
    exit 0
fi

LockDeps
if [ -e "$prefix/versions.txt" ]; then # from another build while this one waited
    echo "$prefix"
    exit 0
fi
Say "building cJSON $CJSON, OpenSSL $OPENSSL, pugixml $PUGIXML into the cache (about a minute, once)"
PrepareSources

Source cjson "$CJSON"
CJSON=$SOURCE_VERSION
cd "$work"/cjson/*/
Quietly cmake -S . -B build "${CMAKE_CROSS[@]}" -DENABLE_CJSON_TEST=OFF -DENABLE_CJSON_UTILS=OFF \
    -DBUILD_SHARED_AND_STATIC_LIBS=OFF -DENABLE_CUSTOM_COMPILER_FLAGS=OFF \
    "-DCMAKE_C_FLAGS=$CFLAGS -ffile-prefix-map=$work=. -DCJSON_HIDE_SYMBOLS"
Quietly cmake --build build --target install -j "$(nproc)"
cp LICENSE "$stage/licenses/cJSON.txt"

# For this one and the next only the upstream tarball: the packaging adds nothing for this target.
Source pugixml "$PUGIXML" --tar-only
PUGIXML=$SOURCE_VERSION
tar -xf pugixml_*.orig.tar.*
cd pugixml-*/
# Without what nobody calls: XPath, and streams, with which the programs would hold all locales.
Quietly cmake -S . -B build "${CMAKE_CROSS[@]}" \
    "-DCMAKE_CXX_FLAGS=$CFLAGS -ffile-prefix-map=$work=. -DPUGIXML_NO_XPATH -DPUGIXML_NO_STL"
Quietly cmake --build build --target install -j "$(nproc)"
cp LICENSE.md "$stage/licenses/pugixml.txt"

Source openssl "$OPENSSL" --tar-only
OPENSSL=$SOURCE_VERSION
tar -xf openssl_*.orig.tar.*
cd openssl-*/
# Otherwise the date and the folders would end up in the library.
export SOURCE_DATE_EPOCH=0
# shellcheck disable=SC2086 # a list of words
Quietly ./Configure mingw64 --cross-compile-prefix=$TRIPLE- $OPENSSL_OPTIONS --prefix=/openssl \
    --openssldir=/openssl CC="$(basename "$CC" | sed "s/^$TRIPLE-//")" \
    CFLAGS="$CFLAGS -ffile-prefix-map=$work=."
Quietly make -j "$(nproc)" build_generated libcrypto.a
cp libcrypto.a "$stage/lib/"
cp -r include/openssl "$stage/include/"
cp LICENSE.txt "$stage/licenses/OpenSSL.txt"

# Headers only, but copied into a separate folder: a cross build must not use /usr/include.
[ -e /usr/include/CLI/CLI.hpp ] || Die "libcli11-dev is missing: run scripts/install-packages.sh as root"
cp -r /usr/include/CLI "$stage/include/"
cp /usr/share/doc/libcli11-dev/copyright "$stage/licenses/CLI11.txt" 2>/dev/null ||
    Say "CLI11's licence text is missing on this machine"

rm -rf "$stage/lib/cmake" "$stage/lib/pkgconfig" "$stage/bin"
printf '%s %s\n' cJSON "$CJSON" OpenSSL "$OPENSSL" pugixml "${PUGIXML%-*}" CLI11 "$CLI11" >"$stage/versions.txt"
rm -rf "$prefix"
mv "$stage" "$prefix"
echo "$prefix"
