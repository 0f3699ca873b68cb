#!/usr/bin/env bash
# Runs a script under cscript on an account and compares every line that it prints, and its exit code, with what is
# expected. Usage: run_script.sh SCRIPT ACCOUNT
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/../common.sh"
expect_output "$1.expected" "$1" "$2"
