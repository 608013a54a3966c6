#!/bin/bash
# Builds Google Benchmark for Windows, once, into the cache, for builds with VNDISCOVER_BUILD_BENCH=ON only.
# Prints the prefix: include/, lib/, licenses/, versions.txt.
set -euo pipefail
. "$(dirname "$0")/common.sh"
. "$(dirname "$0")/cross-deps.sh"

BENCHMARK=$(LC_ALL=C apt-cache policy libbenchmark-dev | Candidate libbenchmark-dev)
[ -n "$BENCHMARK" ] && [ "$BENCHMARK" != "(none)" ] || Die "apt does not know libbenchmark-dev: run apt-get update"

RECIPE=1 # increase it when the steps below change their output
key=$({
    echo "$RECIPE $BENCHMARK $CFLAGS"
    "$CXX" --version | sed -n 1p
} | sha256sum | cut -c 1-16)
prefix=$VNDISCOVER_CACHE/deps/benchmark-$TRIPLE-$key
if [ ! -e "$prefix/versions.txt" ]; then
    LockDeps
fi
if [ -e "$prefix/versions.txt" ]; then # from an earlier build, or from another one while this one waited
    echo "$prefix"
    exit 0
fi
Say "building Google Benchmark $BENCHMARK into the cache (about a minute, once)"
PrepareSources
Source benchmark "$BENCHMARK"
BENCHMARK=$SOURCE_VERSION
cd "$work"/benchmark/*/
Quietly cmake -S . -B build "${CMAKE_CROSS[@]}" -DBENCHMARK_ENABLE_TESTING=OFF -DBENCHMARK_ENABLE_GTEST_TESTS=OFF \
    -DBENCHMARK_ENABLE_WERROR=OFF -DBENCHMARK_INSTALL_DOCS=OFF -DVERSION="${BENCHMARK%-*}" -DGENERIC_LIB_VERSION="${BENCHMARK%-*}"
Quietly cmake --build build --target install -j "$(nproc)"
cp LICENSE "$stage/licenses/benchmark.txt"
rm -rf "$stage/lib/cmake" "$stage/lib/pkgconfig" "$stage/bin"
echo "benchmark $BENCHMARK" >"$stage/versions.txt"
rm -rf "$prefix"
mv "$stage" "$prefix"
echo "$prefix"
