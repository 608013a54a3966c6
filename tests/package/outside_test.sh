#!/bin/bash
# outside_test.sh KIT HOSTS: builds projects that know nothing of this tree against an installed kit, in all the
# ways it offers, into HOSTS. CMAKE, CC, CXX: the programs (mingw).
set -euo pipefail
kit=$1 hosts=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
rm -rf "$hosts"
mkdir -p "$hosts"

# Moved: a kit is unpacked wherever its user likes, blanks included.
cp -r "$kit" "$work/the kit"
kit="$work/the kit"
cp -r "$kit/examples" "$work/project"
cd "$work/project"

# Configure FOLDER OPTION...: a mingw project, with none of this tree's settings.
Configure() {
    "$CMAKE" -S . -B "$@" -G Ninja -DCMAKE_SYSTEM_NAME=Windows -DCMAKE_C_COMPILER="$CC" \
        -DCMAKE_CXX_COMPILER="$CXX" "-DCMAKE_PREFIX_PATH=$kit"
}

# find_package
Configure build "-DCMAKE_CXX_FLAGS=-Wall -Wextra -Werror" "-DCMAKE_C_FLAGS=-Wall -Wextra -Werror" >/dev/null
"$CMAKE" --build build
cp build/*.exe build/VnDiscover.dll "$hosts/"
cmp "$hosts/VnDiscover.dll" "$kit/bin/VnDiscover.dll"

# find_package takes neither another major version nor another system.
sed -i 's/find_package(VnDiscover 1.0/find_package(VnDiscover 2.0/' CMakeLists.txt
if Configure refused >log 2>&1; then
    echo "version 2.0 was found in the kit"
    exit 1
fi
grep -q 'version: 1\.' log || { cat log; exit 1; }
printf 'cmake_minimum_required(VERSION 3.21)\nproject(Native C)\n%s\n' \
    'find_package(VnDiscover CONFIG REQUIRED)' >CMakeLists.txt
if "$CMAKE" -S . -B native -G Ninja "-DCMAKE_PREFIX_PATH=$kit" >log 2>&1; then
    echo "a project for this system found a Windows DLL"
    exit 1
fi
grep -q 'is a Windows DLL' log || { cat log; exit 1; }

# pkg-config
export PKG_CONFIG_LIBDIR=$kit/lib/pkgconfig
flags=()
eval "flags=($(pkg-config --cflags --libs vndiscover))"
"$CC" -Wall -Wextra -Werror c/sweep.c "${flags[@]}" -o "$hosts/sweep_pkgconfig.exe"
[ "$(pkg-config --modversion vndiscover)" = 1.0.0 ]

# The import library for Visual C++: by GNU's linker, and, where it is installed, by LLVM's double of
# Visual C++'s own, for a program without any runtime.
"$CC" -Wall -Wextra -Werror -I"$kit/include" c/sweep.c "$kit/lib/VnDiscover.lib" -o "$hosts/sweep_lib.exe"
if command -v lld-link clang llvm-dlltool >/dev/null; then
    printf 'LIBRARY kernel32.dll\nEXPORTS\n    ExitProcess\n' >kernel32.def
    llvm-dlltool -m i386:x86-64 -d kernel32.def -l kernel32.lib
    cat >bare.c <<'SOURCE'
__declspec(dllimport) void ExitProcess(unsigned status);
__declspec(dllimport) int DiscoverHttp(void);
__declspec(dllimport) int StopDiscoverSnmp(void);
void mainCRTStartup(void) { ExitProcess(DiscoverHttp() == 0 && StopDiscoverSnmp() == 0 ? 42 : 1); }
SOURCE
    clang --target=x86_64-pc-windows-msvc -c bare.c -o bare.obj
    lld-link /nologo /subsystem:console /nodefaultlib /out:"$hosts/bare.exe" bare.obj kernel32.lib \
        "$kit/lib/VnDiscover.lib"
fi
