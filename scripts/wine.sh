#!/usr/bin/env bash
# Runs one Windows program in the project's own environment.
. "$(dirname "$0")/common.sh"
use_wine wine
exec wine64 "$@"
