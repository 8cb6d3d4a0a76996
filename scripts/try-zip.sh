#!/usr/bin/env bash
# scripts/try-zip.sh ZIP [condition...]: runs the zip of tests (./package --tests) in Wine as strange machines would have
# it, by default in every condition:
#     german      a German Windows
#     japanese    an ANSI code page that lacks letters of the folder's name, and one of the console that is not UTF-8
#     umlauts     a folder with blanks and umlauts
#     long        a folder with a path of more than 260 characters, which the command prompt cannot use: the run must fail
#     elsewhere   another current folder
#     twice       two runs at the same time
#     unprepared  a Wine prefix that nobody has prepared
#     broken      a program that fails, one that is missing, and one that is no program: the run must fail
# The reports are kept in build/try-zip/. Locales come from Debian's package locales; it need not be configured.
set -euo pipefail
. "$(dirname "$0")/common.sh"

[ "$#" -gt 0 ] || die 'which zip? For example: scripts/try-zip.sh "$(./package --tests)"'
zip=$(realpath "$1")
shift
[ "$#" -gt 0 ] || set -- german japanese umlauts long elsewhere twice unprepared broken
work=$root/build/try-zip
mkdir -p "$work"
export WINEPREFIX=$work/wine LOCPATH=$work/locales
trap end_leftovers EXIT

use_locale() {
    mkdir -p "$LOCPATH"
    [ -d "$LOCPATH/$1.UTF-8" ] || localedef -i "$1" -f UTF-8 "$LOCPATH/$1.UTF-8" ||
        die "the definition of $1 is missing: install Debian's package locales"
    export LANG=$1.UTF-8 LC_ALL=$1.UTF-8
}

# unpack FOLDER: the zip in a new folder; prints its path.
unpack() {
    local folder=$work/$1
    rm -rf "$folder"
    mkdir -p "$folder"
    python3 -m zipfile -e "$zip" "$folder"
    printf '%s' "$folder"
}

# run FOLDER: the tests of an unpacked zip, as a double click would start them.
run() {
    local script
    script=Z:${1//\//\\}\\run-tests.cmd
    python3 "$root/scripts/terminal.py" --unattended wine64 cmd /c "$script" >"$1/screen.txt" ||
        { grep FAILED "$1/screen.txt" >&2; return 1; }
}

german() { use_locale de_DE; run "$(unpack german)"; }
japanese() {
    local folder
    folder=$(unpack 'Prüf 試し')
    use_locale ja_JP
    sed -i '1a chcp 437 >nul\r' "$folder/run-tests.cmd"
    run "$folder"
}
umlauts() { run "$(unpack 'Prüf stand für Ämter')"; }
long() {
    local folder status=0
    folder=$(unpack "long/$(printf 'a folder with a long name %s/' {1..9})end")
    run "$folder" || status=$?
    [ "$status" != 0 ] && ! grep -q 'have passed' "$folder/screen.txt"
}
elsewhere() { local folder; folder=$(unpack elsewhere); cd /usr; run "$folder"; }
twice() {
    local first second status=0
    first=$(unpack 'first copy') second=$(unpack 'second copy')
    run "$first" &
    run "$second" || status=1
    wait $! && return "$status"
}
unprepared() {
    end_leftovers
    export WINEPREFIX=$work/unprepared-wine
    rm -rf "$WINEPREFIX"
    run "$(unpack 'Prüf stand')"
}
broken() {
    local folder status=0
    folder=$(unpack broken)
    rm "$folder/tests/ormacon-checked.cmd" "$folder/tests/conf_tool_test/conf_tool_test.exe"
    echo "no program" >"$folder/tests/common_test.exe"
    run "$folder" || status=$?
    [ "$status" = 1 ] && [ "$(grep '^FAILED' "$folder/report.txt" | cut -d' ' -f3 | xargs)" = 'checked_test, common_test, conf_tool_test,' ]
}

status=0
for condition in "$@"; do
    [ "$condition" = unprepared ] || prepare_wine
    end_leftovers
    if (set -e; "$condition"); then say "passed: $condition"; else say "FAILED: $condition"; status=1; fi
done
exit "$status"
