#!/usr/bin/env bash
# Runs the tests again and again on a machine that is busy: beside them run twice as many busy loops as it has cores.
#
#     scripts/soak.sh [rounds [ctest options]]    one round of all tests by default
#     scripts/soak.sh --interrupts COUNT          Ctrl+C, Ctrl+Break and a closed window at the password prompt
#
# The outcomes of all calls are collected in build/soak/, where the whole output of each failing round is kept, and the
# table is printed at the end. Remove that folder to start a new table. Fails when a round of this call failed.
set -euo pipefail
. "$(dirname "$0")/common.sh"

round_limit=7200  # seconds
results=$root/build/soak
busy=()

start_load() {
    local loops=$((2 * $(nproc)))
    for ((; loops > 0; loops--)); do
        timeout "$round_limit" sh -c 'while :; do :; done' &
        busy+=($!)
    done
}

clean_up() {
    [ "${#busy[@]}" = 0 ] || kill "${busy[@]}" 2>/dev/null || true
    end_leftovers
}

# round NAME COMMAND...: runs the command; keeps its whole output when it fails.
round() {
    local output=$results/$1.txt
    shift
    timeout --foreground "$round_limit" "$@" >"$output" 2>&1 </dev/null
}

# "test outcome" for each test in the output of ctest.
outcomes_in() {
    sed -nE 's/^ *[0-9]+\/[0-9]+ Test +#[0-9]+: ([^ ]+) \.+ *(\*\*\*)?(Passed|Failed|Timeout|Exception|Not Run).*/\1 \3/p' "$1"
}

run_tests() {
    local name passed=yes
    name=$(date +round-%Y%m%d-%H%M%S)
    round "$name" ctest --test-dir "$root/build/test" --output-on-failure "$@" || passed=no
    outcomes_in "$results/$name.txt" >>"$results/outcomes.txt"
    [ "$passed" = no ] || rm "$results/$name.txt"
    [ "$passed" = yes ]
}

interrupt() {
    local name passed=Passed event command
    export ORMACON_INTERRUPTS=$1
    for event in ctrl_c ctrl_break closed_window; do
        name=$(date +"$event-%Y%m%d-%H%M%S")
        command=("$root/tests/console/terminal_test.py" "Interrupts.test_${event}_at_the_password_prompt")
        [ "$event" != ctrl_break ] || command=("$root/scripts/terminal.py" --unattended wine64
            "$root/build/test/bin/console_dialogue_test.exe" "--gtest_filter=*AtThePasswordPrompt")
        round "$name" python3 "${command[@]}" &&
            rm "$results/$name.txt" || passed=Failed
        printf '%s\n' "${event}_${1}_times $passed" >>"$results/outcomes.txt"
        [ "$passed" = Passed ] || return 1
    done
}

print_table() {
    printf '%-32s %6s %8s\n' Test Rounds Failures
    awk '{ rounds[$1]++; failures[$1] += $2 != "Passed" }
         END { for (test in rounds) printf "%-32s %6d %8d\n", test, rounds[test], failures[test] }' \
        "$results/outcomes.txt" | sort
}

[[ ${1-} != --interrupts || ${2-} =~ ^[1-9][0-9]*$ ]] ||
    die "how many interrupts? For example: scripts/soak.sh --interrupts 100"
"$root/scripts/setup.sh"
build test
mkdir -p "$results"
start_wine test-wine
trap clean_up EXIT
start_load
status=0
if [ "${1-}" = --interrupts ]; then
    interrupt "$2" || status=1
else
    rounds=${1:-1}
    for ((done = 0; done < rounds; done++)); do
        say "round $((done + 1)) of $rounds ..."
        run_tests "${@:2}" || status=1
    done
fi
print_table
[ "$status" = 0 ] || say "the output of the failing rounds is in $results"
exit "$status"
