#!/bin/bash
# hosts_test.sh KIT: builds hosts outside this tree against an installed kit, in every way that it supports, and runs them
# in a lab (wine-run.sh refuses elsewhere), one with a real agent on one of its two networks. CMAKE, CC, CXX: the programs (mingw).
set -euo pipefail
lab=$VNDISCOVER_LAB_SCRIPTS hosts=$TMPDIR/hosts kit="$TMPDIR/the kit" # moved to a folder of any name
cp -r "$1" "$kit"
cp -r "$kit/examples" "$TMPDIR/project"
mkdir "$hosts"
cd "$TMPDIR/project"
warnings=(-Wall -Wextra -Werror)
windows=(-DCMAKE_SYSTEM_NAME=Windows -DCMAKE_C_COMPILER="$CC" -DCMAKE_CXX_COMPILER="$CXX")

# Configure FOLDER OPTION...: without any settings of this tree.
Configure() { "$CMAKE" -S . -G Ninja "-DCMAKE_PREFIX_PATH=$kit" -B "$@" >log 2>&1; }
# Refuses REASON FOLDER OPTION...
Refuses() {
    if Configure "${@:2}" || ! grep -q "$1" log; then
        cat log
        echo "not refused because of '$1'"
        exit 1
    fi
}

# find_package, which rejects another system and another major version.
Configure build "${windows[@]}" "-DCMAKE_CXX_FLAGS=${warnings[*]}" "-DCMAKE_C_FLAGS=${warnings[*]}" || { cat log; exit 1; }
"$CMAKE" --build build
cp build/*.exe build/VnDiscover.dll "$hosts/"
cmp "$hosts/VnDiscover.dll" "$kit/bin/VnDiscover.dll"
Refuses 'is a Windows DLL' native
sed -i 's/find_package(VnDiscover 1.0/find_package(VnDiscover 2.0/' CMakeLists.txt
Refuses 'version: 1\.' other-version "${windows[@]}"

# pkg-config
export PKG_CONFIG_LIBDIR=$kit/lib/pkgconfig
eval "flags=($(pkg-config --cflags --libs vndiscover))"
"$CC" "${warnings[@]}" c/sweep.c "${flags[@]}" -o "$hosts/sweep_pkgconfig.exe"
[ "$(pkg-config --modversion vndiscover)" = 1.0.0 ]

# The import library for Visual C++, with GNU's linker and, if it is installed, with LLVM's equivalent of Visual C++'s
# linker, for a program without a runtime.
"$CC" "${warnings[@]}" -I"$kit/include" c/sweep.c "$kit/lib/VnDiscover.lib" -o "$hosts/sweep_lib.exe"
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

"$lab/snmp-agent.sh" neta printer >/dev/null <<'CONF'
agentAddress udp:161
rocommunity sesame
override .1.3.6.1.4.1.5963.43.5.1.1.1.1 octet_str "Model 1"
CONF

# Check COMMAND STATUS PATTERN...: the program must end with this exit code and print a line for each pattern.
Check() {
    local command=$1 wanted=$2 status=0 output pattern
    shift 2
    # shellcheck disable=SC2086 # words of a command
    output=$(timeout 100 "$lab/wine-run.sh" host "$hosts"/$command 2>&1 </dev/null | tr -d '\r') || status=$?
    for pattern in "$@"; do
        [ $status = "$wanted" ] && grep -qE "$pattern" <<<"$output" || {
            printf "%s: exit code %s, not %s, or no line with '%s':\n%s\n" "$command" $status "$wanted" "$pattern" "$output"
            return 1
        }
    done
}
checks=() failed=0
Start() { # at the same time, since they mostly wait
    Check "$@" &
    checks+=($!)
}
for sweep in sweep sweep_pkgconfig sweep_lib; do
    Start $sweep.exe 0 '^10\.77\.1\.2	Model 1$' '^end of the sweep$' '^1 answers$'
done
Start 'sweep.exe wrong-community' 1 '^end of the sweep$' '^0 answers$'
[ ! -e "$hosts/bare.exe" ] || Start bare.exe 42 ''
# Two networks of at least 2 s each; a window whose thread is blocked by the sweep would paint a frame or two.
Start 'worker_sweep.exe --once' 0 '^10\.77\.1\.2  Model 1$' '^1 devices, [0-9]{2,} frames, complete$'
# A stop while answers of the first network are collected: they are not delivered.
Start 'worker_sweep.exe --once --stop-after 1000' 1 '^0 devices, [0-9]{2,} frames, stopped$'
for check in "${checks[@]}"; do wait "$check" || failed=1; done
exit $failed
