#!/usr/bin/env bash
# bounded.sh SECONDS COMMAND...: runs a test. One that takes longer is ended, with everything that it has started.
. "$(dirname "$0")/common.sh"
timeout --foreground -k 5 "$@"
status=$?
if [ "$status" = 124 ] || [ "$status" = 137 ]; then
    say "ended after $1 seconds: ${*:2}"
    restart_wine
fi
exit "$status"
