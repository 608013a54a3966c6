# Sourced after common.sh by scripts that read the sources with Clang for the Windows target. Sets
#   CLANG            the compiler
#   WINDOWS          options for every source
#   WINDOWS_CXX      further options for the product's C++
CLANG=$(command -v clang) || Die "clang is missing: run scripts/install-packages.sh as root"
GXX=$(command -v x86_64-w64-mingw32-g++-posix || command -v x86_64-w64-mingw32-g++) ||
    Die "no mingw g++: run scripts/install-packages.sh as root"
headers=$(dirname "$("$GXX" -print-libgcc-file-name)")/include/c++
deps=$("$ROOT/scripts/build-deps.sh")
# shellcheck disable=SC2034 # for the scripts that source this
WINDOWS=(--target=x86_64-w64-windows-gnu -fsyntax-only -D_WIN32_WINNT=0x0601 "-I$ROOT/include")
# shellcheck disable=SC2034
WINDOWS_CXX=(-x c++ -std=c++17 -isystem "$headers" -isystem "$headers/x86_64-w64-mingw32"
    -isystem "$headers/backward" -isystem "$deps/include" -DVNDISCOVER_BUILD -DOPENSSL_SUPPRESS_DEPRECATED
    "-I$ROOT/src" "-I$ROOT" "-I$ROOT/host")
