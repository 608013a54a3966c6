# Sourced after common.sh by the scripts that build third-party libraries for Windows into the cache. The sources are
# those of the Debian packages of this machine's release, which include security updates.
TRIPLE=x86_64-w64-mingw32
CC=$(command -v $TRIPLE-gcc-posix || command -v $TRIPLE-gcc) ||
    Die "no $TRIPLE-gcc: run scripts/install-packages.sh as root"
CXX=$(command -v $TRIPLE-g++-posix || command -v $TRIPLE-g++)
CFLAGS="-O2 -ffunction-sections -fdata-sections"

# The newest version of each package that apt knows, or the installed one if apt has no lists.
Candidate() { awk -v package="$1:" '$1 == package { found = 1 } found && /Candidate:/ { print $2; found = 0 }'; }

# Waits for other builds of dependencies. The lock is held until this process ends.
LockDeps() {
    mkdir -p "$VNDISCOVER_CACHE/deps"
    exec 9>"$VNDISCOVER_CACHE/deps/lock"
    flock 9
}

# Makes the folder $work, containing the stage that will become the prefix, and prepares Source and CMAKE_CROSS.
PrepareSources() {
    work=$(mktemp -d "$VNDISCOVER_CACHE/deps/work.XXXXXX")
    trap 'rm -rf "$work"' EXIT
    stage=$work/stage
    mkdir -p "$stage/include" "$stage/lib" "$stage/licenses" "$work/apt/lists/partial"

    # A private source list, so that the system's lists are not changed.
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
    CMAKE_CROSS=(-G Ninja -DCMAKE_TOOLCHAIN_FILE="$ROOT/cmake/mingw-w64-x86_64.cmake"
        -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=OFF -DCMAKE_INSTALL_PREFIX="$stage"
        -DCMAKE_INSTALL_LIBDIR=lib "-DCMAKE_C_FLAGS=$CFLAGS -ffile-prefix-map=$work=."
        "-DCMAKE_CXX_FLAGS=$CFLAGS -ffile-prefix-map=$work=.")
    Quietly apt-get -q "${APT_OPTIONS[@]}" update || Die "the package sources cannot be reached"
}

# Source NAME VERSION [OPTION...]: fetches a source package into its own folder, in the wanted version or, since mirrors
# may lack a file of it, in the newest complete one. Sets SOURCE_VERSION.
Source() {
    local name=$1 wanted=$2 versions
    shift 2
    mkdir "$work/$name"
    cd "$work/$name"
    versions=$(apt-cache "${APT_OPTIONS[@]}" showsrc --only-source "$name" | sed -n 's/^Version: //p' | sort -rVu)
    for SOURCE_VERSION in "$wanted" $versions; do
        if Quietly apt-get -q "${APT_OPTIONS[@]}" source "$@" "$name=$SOURCE_VERSION" 2>"$work/$name.log"; then
            return
        fi
    done
    cat "$work/$name.log" >&2
    Die "no source of $name"
}
