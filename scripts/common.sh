# Sourced by the other scripts: paths, and one-line messages.
ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export VNDISCOVER_CACHE=${VNDISCOVER_CACHE:-${XDG_CACHE_HOME:-${HOME:-/root}/.cache}/vndiscover}

Say() { printf '== %s\n' "$*" >&2; }
Die() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

# Runs a command quietly, and shows the end of its output only if it fails.
Quietly() {
    local log
    log=$(mktemp)
    if "$@" >"$log" 2>&1 </dev/null; then
        rm -f "$log"
        return 0
    fi
    printf -- '-- failed: %s\n' "$*" >&2
    tail -n 60 "$log" >&2
    rm -f "$log"
    return 1
}
