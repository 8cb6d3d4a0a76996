#!/usr/bin/env bash
# Fuzzes with libFuzzer: scripts/fuzz.sh [seconds for each unit [unit...]]. In build/fuzz/ are kept: what was found, the
# whole output, and the corpora, with which the next run goes on.
set -euo pipefail
. "$(dirname "$0")/common.sh"

seconds=${1:-60}
"$root/scripts/setup.sh" --fuzz
build fuzz
cd "$root/build/fuzz"
units=("${@:2}")
[ "${#units[@]}" -gt 0 ] || mapfile -t units < <(ls bin)
status=0
for unit in "${units[@]}"; do
    [ -x "bin/$unit" ] || die "there is no unit named $unit"
    mkdir -p "corpus/$unit"
    say "fuzzing for $seconds s: $unit ..."
    # No input asks for much memory, also not one that announces a long text.
    if "bin/$unit" -max_total_time="$seconds" -max_len=4096 -timeout=10 -malloc_limit_mb=8 \
        -artifact_prefix="found-$unit-" "corpus/$unit" >"$unit.log" 2>&1; then
        grep DONE "$unit.log"
    else
        tail -n 40 "$unit.log"
        status=1
    fi
done
exit "$status"
