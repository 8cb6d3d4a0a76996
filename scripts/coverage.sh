#!/usr/bin/env bash
# Builds the tests so that they note what has run, runs them, and shows the part of the lines and branches reached, per
# folder and for the files below 85 % of lines. Further arguments go to ctest.
set -euo pipefail
. "$(dirname "$0")/common.sh"

"$root/scripts/setup.sh"
build coverage
find "$root/build/coverage" -name '*.gcda' -delete
export GCOV_PREFIX=Z:  # a program writes its notes beside its objects, whatever its current drive is
start_wine coverage-wine
status=0
ctest --test-dir "$root/build/coverage" --output-on-failure "$@" >&2 || status=$?
python3 "$root/scripts/coverage.py" "$root"
exit "$status"
