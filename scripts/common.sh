# Shared by the scripts of this project; sourced, never run.
# Paths, messages, and the environment in which Windows programs run here.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
deps=$root/.deps
export LANG=C.UTF-8 LC_ALL=C.UTF-8

say() { printf '== %s\n' "$*" >&2; }
die() { printf '!! %s\n' "$*" >&2; exit 1; }

# step TITLE COMMAND...: runs a long command with its output in a file; shows the
# output's end when it fails, so that the failing step and the reason stand together.
step() {
    local title=$1 log
    shift
    mkdir -p "$deps/logs"
    log=$deps/logs/$(printf '%s' "$title" | tr -cs 'A-Za-z0-9.\n' '-').log
    say "$title ..."
    # In the background, since a function called in a condition would run on after a failing line.
    (set -e; "$@") >"$log" 2>&1 </dev/null &
    if ! wait $!; then
        tail -n 25 "$log" >&2
        die "failed: $title (whole output: $log)"
    fi
}

# Wine keeps its prefix in the build folder; nobody's own prefix is touched. Tests have one of their own.
export WINEPREFIX=${ORMACON_WINE_PREFIX:-$root/build/wine}
export WINEDEBUG=${WINEDEBUG--all}
export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe="
export PATH=$PATH:/usr/lib/wine  # Debian keeps wine64 and wineserver there
unset DISPLAY

prepare_wine() {
    [ -f "$WINEPREFIX/.ready" ] && return
    mkdir -p "$WINEPREFIX"
    step "preparing the Windows environment (about 10 s)" wineboot_once
    touch "$WINEPREFIX/.ready"
}
wineboot_once() {
    wine64 wineboot --init
    wine64 reg add 'HKCU\Software\Wine' /v Version /d win10 /f
    wineserver -w
}

# One wineserver for a whole run: starting it anew for each program would take seconds. The first program also starts
# Windows' services, which must neither hold a test's output open nor start while something is measured.
start_wine() {
    wineserver -p600 >/dev/null 2>&1 || true  # refused when there is one already
    wine64 hostname >/dev/null 2>&1 </dev/null || die "failed: starting the Windows environment"
}

# build PRESET: configures once, then builds what is out of date.
build() {
    local preset=$1 dir=$root/build/$1
    if [ ! -f "$dir/build.ninja" ]; then
        step "configuring the $preset build" cmake --preset "$preset" -S "$root"
    fi
    if ! ninja -C "$dir" -n | grep -q 'no work to do'; then
        say "building ($preset) ..."
        ninja -C "$dir" --quiet >&2 || die "failed: building ($preset)"
    fi
}
