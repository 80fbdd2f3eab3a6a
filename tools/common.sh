# Sourced by the project's bash scripts.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
jobs=$(nproc)

heading() {
    printf '\n== %s\n' "$*"
}

die() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

# Lists every C++ file of the project, relative to the root.
sources() {
    (cd "$root" && find src tests bench examples tools -type f \( -name '*.cpp' -o -name '*.h' \) | LC_ALL=C sort)
}

# quietly LOG COMMAND...: runs the command with its output in LOG, and shows the end of LOG if it fails. While it runs,
# a terminal shows the latest line of LOG, any other output gets a dot every ten seconds.
quietly() {
    local log=$1 child ticks=0
    shift
    mkdir -p "$(dirname "$log")"
    "$@" >"$log" 2>&1 &
    child=$!
    while kill -0 "$child" 2>/dev/null; do
        sleep 0.2
        ticks=$((ticks + 1))
        if [[ -t 2 ]]; then
            printf '\r\033[K%.70s' "$(tail -n 1 "$log")" >&2
        elif ((ticks % 50 == 0)); then
            printf '.' >&2
        fi
    done
    if [[ -t 2 ]]; then
        printf '\r\033[K' >&2
    elif ((ticks >= 50)); then
        printf '\n' >&2
    fi
    if ! wait "$child"; then
        tail -n 60 "$log" >&2
        die "failed: $* (full output in $log)"
    fi
}

# build PRESET: configures and builds it below build/.
build() {
    local preset=$1
    quietly "$root/build/$preset-configure.log" cmake -S "$root" --preset "$preset"
    quietly "$root/build/$preset-build.log" cmake --build "$root/build/$preset" -j "$jobs"
}
