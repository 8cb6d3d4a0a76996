#!/usr/bin/env bash
# bounded.sh SECONDS COMMAND...: runs a test. One that takes longer is ended, with everything that it has started.
. "$(dirname "$0")/common.sh"
timeout --foreground -k 5 "$@"
status=$?
if [ "$status" = 124 ] || [ "$status" = 137 ]; then
    say "ended after $1 seconds: ${*:2}"
    restart_wine
fi
# GoogleTest deletes this file after the last test. Wine may end a program silently and with status 0: one whose stack
# overflow leaves no room for the report.
if [ "$status" = 0 ] && [ -e "${TEST_PREMATURE_EXIT_FILE-}" ]; then
    say "ended with status 0 before its last test: ${*:2}"
    status=1
fi
exit "$status"
