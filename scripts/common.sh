# Sourced by run and test. The caller has set `set -euo pipefail` and changed to the project folder.

name=${0##*/}

# Two checkouts of one source share what the compiler cache keeps.
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1

# Says in one line what is going on.
say() { echo "$name: $*" >&2; }

# build PRESET TARGET...: configures and builds, silently unless it fails.
build() {
    local preset=$1
    shift
    local log=build/$preset.log
    mkdir -p build
    if ! { cmake --preset "$preset" && cmake --build --preset "$preset" --target "$@"; } \
        >"$log" 2>&1; then
        grep -E -A 12 'error|FAILED|Error' "$log" | head -n 80 >&2 || tail -n 40 "$log" >&2
        say "building '$preset' failed (all of it: $log); run ./$name again"
        exit 1
    fi
}

display_works() { [ -n "${DISPLAY:-}" ] && xdpyinfo >/dev/null 2>&1; }

# Starts a virtual display that ends with this script, and points DISPLAY at it.
start_display() {
    local number
    mkdir -p build
    : >build/display
    Xvfb -displayfd 9 -screen 0 1600x1200x24 -nolisten tcp </dev/null >/dev/null 2>&1 9>build/display &
    display_pid=$!
    trap 'kill "$display_pid" 2>/dev/null || true' EXIT
    for _ in $(seq 100); do
        number=$(cat build/display)
        [ -n "$number" ] && break
        sleep 0.1
    done
    if [ -z "$number" ]; then
        say "the virtual display does not start; run ./$name again"
        exit 1
    fi
    export DISPLAY=:$number
}

# GNUstep starts its notification and pasteboard daemons on first use, with the output of the
# program that needed them: whoever reads that output to its end would wait for the daemons.
start_daemons() {
    gdnc </dev/null >/dev/null 2>&1 || true
    gpbs </dev/null >/dev/null 2>&1 || true
}
