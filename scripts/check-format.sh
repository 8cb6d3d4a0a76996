#!/usr/bin/env bash
# Fails and shows the places where a source is not formatted as .clang-format says.
set -euo pipefail
cd "$(dirname "$0")/.."
git ls-files -z '*.h' '*.cpp' | xargs -0 -r clang-format --dry-run -Werror
