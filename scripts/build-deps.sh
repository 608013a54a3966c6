#!/bin/bash
# Builds the static libraries that the Windows programs link (cJSON, OpenSSL's libcrypto, pugixml) and copies
# CLI11's headers, once, into the cache. Prints the prefix: include/, lib/, licenses/, versions.txt.
# Sources are those of the Debian packages of this machine's release, so security updates arrive with them.
set -euo pipefail
. "$(dirname "$0")/common.sh"

TRIPLE=x86_64-w64-mingw32
CC=$(command -v $TRIPLE-gcc-posix || command -v $TRIPLE-gcc) ||
    Die "no $TRIPLE-gcc: run scripts/install-packages.sh as root"
CXX=$(command -v $TRIPLE-g++-posix || command -v $TRIPLE-g++)
CFLAGS="-O2 -ffunction-sections -fdata-sections"
OPENSSL_OPTIONS="no-shared no-tests no-tls no-dtls no-engine no-legacy no-dso no-threads no-sock
    no-ui-console no-cmp no-cms no-ct no-ocsp no-ts no-ec no-dh no-dsa"

# The newest version of each package that apt knows, or the installed one where apt has no lists.
Candidate() { awk -v package="$1:" '$1 == package { found = 1 } found && /Candidate:/ { print $2; exit }'; }
policy=$(LC_ALL=C apt-cache policy libcjson-dev libssl-dev libpugixml-dev libcli11-dev)
CJSON=$(Candidate libcjson-dev <<<"$policy")
OPENSSL=$(Candidate libssl-dev <<<"$policy")
PUGIXML=$(Candidate libpugixml-dev <<<"$policy")
CLI11=$(Candidate libcli11-dev <<<"$policy")
for version in "$CJSON" "$OPENSSL" "$PUGIXML" "$CLI11"; do
    [ -n "$version" ] && [ "$version" != "(none)" ] || Die "apt does not know every library: run apt-get update"
done

# The key: versions, compiler, flags, and the recipe's own number (raise it when the steps below change
# what they produce).
RECIPE=2
key=$({
    echo "$RECIPE $CJSON $OPENSSL $PUGIXML $CLI11 $CFLAGS" $OPENSSL_OPTIONS
    "$CC" --version | head -n 1
} | sha256sum | cut -c 1-16)
prefix=$VNDISCOVER_CACHE/deps/$TRIPLE-$key
if [ -e "$prefix/versions.txt" ]; then
    echo "$prefix"
    exit 0
fi

mkdir -p "$VNDISCOVER_CACHE/deps"
exec 9>"$VNDISCOVER_CACHE/deps/lock"
flock 9
if [ -e "$prefix/versions.txt" ]; then # another build made it while we waited
    echo "$prefix"
    exit 0
fi
Say "building cJSON $CJSON, OpenSSL $OPENSSL, pugixml $PUGIXML into the cache (about a minute, once)"
work=$(mktemp -d "$VNDISCOVER_CACHE/deps/work.XXXXXX")
trap 'rm -rf "$work"' EXIT
stage=$work/stage
mkdir -p "$stage/include" "$stage/lib" "$stage/licenses" "$work/apt/lists/partial"

# A private source list: the system's own lists stay as they are.
cat /etc/apt/sources.list /etc/apt/sources.list.d/*.list 2>/dev/null |
    sed -n 's/^deb \(.*\(debian\|ubuntu\).*\)$/deb-src \1/p' >"$work/apt/sources.list" || true
mkdir "$work/apt/parts"
for file in /etc/apt/sources.list.d/*.sources; do
    if grep -qs '^URIs:.*\(debian\|ubuntu\)' "$file"; then
        sed 's/^Types:.*/Types: deb-src/' "$file" >"$work/apt/parts/$(basename "$file")"
    fi
done
APT_OPTIONS=(-o "Dir::Etc::sourcelist=$work/apt/sources.list" -o "Dir::Etc::sourceparts=$work/apt/parts"
    -o "Dir::State::lists=$work/apt/lists" -o "Dir::Cache::srcpkgcache=" -o "Dir::Cache::pkgcache="
    -o APT::Sandbox::User=root)
Quietly apt-get -q "${APT_OPTIONS[@]}" update || Die "the package sources cannot be reached"

# Source NAME VERSION [OPTION...]: fetches a source package into its own folder; the wanted version, or
# the newest that is there.
Source() {
    local name=$1 version=$2
    shift 2
    mkdir "$work/$name"
    cd "$work/$name"
    Quietly apt-get -q "${APT_OPTIONS[@]}" source "$@" "$name=$version" ||
        Quietly apt-get -q "${APT_OPTIONS[@]}" source "$@" "$name" || Die "no source of $name"
}
CMAKE_CROSS=(-G Ninja -DCMAKE_TOOLCHAIN_FILE="$ROOT/cmake/mingw-w64-x86_64.cmake"
    -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=OFF -DCMAKE_INSTALL_PREFIX="$stage"
    -DCMAKE_INSTALL_LIBDIR=lib "-DCMAKE_C_FLAGS=$CFLAGS -ffile-prefix-map=$work=."
    "-DCMAKE_CXX_FLAGS=$CFLAGS -ffile-prefix-map=$work=.")

Source cjson "$CJSON"
cd "$work"/cjson/*/
Quietly cmake -S . -B build "${CMAKE_CROSS[@]}" -DENABLE_CJSON_TEST=OFF -DENABLE_CJSON_UTILS=OFF \
    -DBUILD_SHARED_AND_STATIC_LIBS=OFF -DENABLE_CUSTOM_COMPILER_FLAGS=OFF \
    "-DCMAKE_C_FLAGS=$CFLAGS -ffile-prefix-map=$work=. -DCJSON_HIDE_SYMBOLS"
Quietly cmake --build build --target install -j "$(nproc)"
cp LICENSE "$stage/licenses/cJSON.txt"

Source pugixml "$PUGIXML"
cd "$work"/pugixml/*/
Quietly cmake -S . -B build "${CMAKE_CROSS[@]}"
Quietly cmake --build build --target install -j "$(nproc)"
cp LICENSE.md "$stage/licenses/pugixml.txt"

# The upstream tarball only: the packaging adds nothing for this target.
Source openssl "$OPENSSL" --tar-only
tar -xf openssl_*.orig.tar.*
cd openssl-*/
# The date and the folders would end up in the library.
export SOURCE_DATE_EPOCH=0
# shellcheck disable=SC2086 # a list of words
Quietly ./Configure mingw64 --cross-compile-prefix=$TRIPLE- $OPENSSL_OPTIONS --prefix=/openssl \
    --openssldir=/openssl CC="$(basename "$CC" | sed "s/^$TRIPLE-//")" \
    CFLAGS="$CFLAGS -ffile-prefix-map=$work=."
Quietly make -j "$(nproc)" build_generated libcrypto.a
cp libcrypto.a "$stage/lib/"
cp -r include/openssl "$stage/include/"
cp LICENSE.txt "$stage/licenses/OpenSSL.txt"

# Headers alone, but from a folder of their own: /usr/include must not reach a cross build.
[ -e /usr/include/CLI/CLI.hpp ] || Die "libcli11-dev is missing: run scripts/install-packages.sh as root"
cp -r /usr/include/CLI "$stage/include/"
cp /usr/share/doc/libcli11-dev/copyright "$stage/licenses/CLI11.txt" 2>/dev/null ||
    Say "CLI11's licence text is not on this machine"

rm -rf "$stage/lib/cmake" "$stage/lib/pkgconfig" "$stage/bin"
printf '%s %s\n' cJSON "$CJSON" OpenSSL "$OPENSSL" pugixml "$PUGIXML" CLI11 "$CLI11" >"$stage/versions.txt"
rm -rf "$prefix"
mv "$stage" "$prefix"
echo "$prefix"
