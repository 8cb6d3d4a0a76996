# Shared by the scripts of this project; sourced, never run.
# Paths, messages, and the environment in which Windows programs run here.

# Linux 6.9 or newer may put the heap of Debian 12's Wine at 0x7ffe0000, which every Windows program needs: one start in
# 8,000 fails with status 1 and no message. So everything runs with fixed addresses, unless a container forbids it.
if [ -z "${ORMACON_FIXED_ADDRESSES-}" ] && [ -f "$0" ] && setarch -R true 2>/dev/null; then
    ORMACON_FIXED_ADDRESSES=yes exec setarch -R "$BASH" "$0" "$@"
fi

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
deps=$root/.deps
export LANG=C.UTF-8 LC_ALL=C.UTF-8

say() { printf '== %s\n' "$*" >&2; }
die() { printf '!! %s\n' "$*" >&2; exit 1; }

# step TITLE COMMAND...: runs a long command with its output in a file; shows the
# output's end when it fails, so that the failing step and the reason are together.
# On a terminal the step's line shows how far it is.
step() {
    local title=$1 log status=0 ticker=
    shift
    mkdir -p "$deps/logs"
    log=$deps/logs/$(printf '%s' "$title" | tr -cs 'A-Za-z0-9.\n' '-').log
    if [ -t 2 ]; then
        printf '== %s ...' "$title" >&2
        show_progress "$title" "$log" &
        ticker=$!
    else
        say "$title ..."
    fi
    set +e  # not in a condition: a function called there would run on after a failing line
    (set -e; "$@") >"$log" 2>&1 </dev/null
    status=$?
    set -e
    if [ -n "$ticker" ]; then
        kill "$ticker" 2>/dev/null
        wait "$ticker" 2>/dev/null || true
        printf '\n' >&2
    fi
    if [ "$status" != 0 ]; then
        tail -n 25 "$log" >&2
        die "failed: $title (whole output: $log)"
    fi
}

# Writes the line of a step again and again, with the seconds that it has taken and the newest count in its output;
# ends with this script at the latest.
show_progress() {
    local line columns start=$SECONDS
    columns=$(stty size <&2 | cut -d' ' -f2)
    while kill -0 $$ 2>/dev/null; do
        line="== $1 ... $((SECONDS - start)) s$(newest_count "$2")"
        printf '\r%s\033[K' "${line:0:$((${columns:-80} - 1))}" >&2
        sleep 0.5
    done
}

# ninja counts its own steps; of apt's packages those downloaded and those set up are counted.
newest_count() {
    awk '
        match($0, /^\[[0-9]+\/[0-9]+\]/) { count = substr($0, 2, RLENGTH - 2); what = "steps" }
        / newly installed, / { all = $3 + $1 }
        /^Get:[0-9]+ / && all { count = ++got "/" all; what = "packages downloaded" }
        /^Setting up / && all { count = ++done "/" all; what = "packages set up" }
        /^\.\.\.updating [0-9]+ targets/ { all = $2 }
        /^(gcc|common)\./ && all { count = ++done "/" all; what = "steps" }
        END { if (count) printf ", %s %s", count, what }' "$1" 2>/dev/null
}

# Wine keeps its prefixes in the build folder; nobody's own prefix is touched.
export WINEPREFIX=${ORMACON_WINE_PREFIX:-$root/build/wine}
export WINEDEBUG=${WINEDEBUG--all}
# No display drivers: nothing here opens a window, and Wine 10's complain on standard error where there is no display.
export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=;winex11.drv,winewayland.drv="
export PATH=$PATH:/usr/lib/wine  # Debian keeps wine64 and wineserver there

# use_wine NAME: this script and all that it starts run Windows programs in the prefix build/NAME, unless the caller of
# this script has chosen another one.
use_wine() {
    export ORMACON_WINE_PREFIX=${ORMACON_WINE_PREFIX:-$root/build/$1}
    export WINEPREFIX=$ORMACON_WINE_PREFIX
    prepare_wine
}

# start_wine NAME: the same, with one wineserver for the whole run of this script. Nothing of it is left at the end.
start_wine() {
    use_wine "$1"
    trap end_leftovers EXIT  # also after Ctrl+C
    restart_wine
}

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

# Ends every program of this Wine prefix except the calling script and its ancestors: what an interrupted run has left
# behind would hold files and take the next run's place.
end_leftovers() {
    local pid=$$ own=" " environ
    while [ "$pid" -gt 1 ]; do
        own+="$pid "
        pid=$(awk '/^PPid:/ { print $2 }' "/proc/$pid/status")
    done
    wineserver -k >/dev/null 2>&1 || true  # fails when there is none
    for environ in $(grep -lszxF "WINEPREFIX=$WINEPREFIX" /proc/[0-9]*/environ); do
        pid=$(basename "$(dirname "$environ")")
        [[ $own == *" $pid "* ]] || kill -KILL "$pid" 2>/dev/null || true
    done
}

# Starting a wineserver anew for each program would take seconds. The first program also starts Windows' services, which
# must neither hold a test's output open nor start while something is measured.
restart_wine() {
    end_leftovers
    wineserver -p600 >/dev/null 2>&1 || true  # refused when there is one already
    wine64 hostname >/dev/null 2>&1 </dev/null || die "failed: starting the Windows environment"
}

# build PRESET: configures when the presets or the libraries have changed, then builds what is out of date.
build() {
    local preset=$1 dir=$root/build/$1 settings quiet=
    settings=$(cat "$root/CMakePresets.json" "$deps"/{boost,tinyxml,googletest}/built-from | cksum)
    if [ "$settings" != "$(cat "$dir/configured-with" 2>/dev/null)" ]; then
        step "configuring the $preset build" cmake --fresh --preset "$preset" -S "$root"
        printf '%s\n' "$settings" >"$dir/configured-with"
    fi
    if ! ninja -C "$dir" -n | grep -q 'no work to do'; then
        say "building ($preset) ..."
        [ -t 2 ] || quiet=--quiet  # on a terminal ninja shows on one line how far it is
        NINJA_STATUS='[%f/%t, %e s] ' ninja -C "$dir" ${quiet:+"$quiet"} >&2 || die "failed: building ($preset)"
    fi
}
