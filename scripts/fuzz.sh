#!/usr/bin/env bash
# Fuzzes with libFuzzer: scripts/fuzz.sh [seconds for each unit [unit...]]. build/fuzz/ keeps the inputs that failed, the
# whole output, and the corpora, from which the next run continues.
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
    [ -x "bin/$unit" ] || die "unknown unit: $unit (units: $(ls bin | tr '\n' ' '))"
    mkdir -p "corpus/$unit"
    say "fuzzing for $seconds s: $unit ..."
    # No input may take much memory, not even one that announces a long text.
    if "bin/$unit" -max_total_time="$seconds" -max_len=4096 -timeout=10 -malloc_limit_mb=8 \
        -artifact_prefix="found-$unit-" "corpus/$unit" >"$unit.log" 2>&1; then
        grep DONE "$unit.log"
    else
        tail -n 40 "$unit.log"
        printf '!! %s failed: the input is in %s, the whole output in %s\n' \
            "$unit" "$PWD/found-$unit-*" "$PWD/$unit.log" >&2
        status=1
    fi
done
exit "$status"
