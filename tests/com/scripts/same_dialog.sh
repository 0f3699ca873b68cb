#!/usr/bin/env bash
# The same steps of a filter dialog, natively and through COM, show the same, byte for byte. Usage:
#   same_dialog.sh NATIVE_PROGRAM WIN32_PROGRAM ACCOUNT REPORT STEP...
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/../common.sh"
compare_on "$1" "$2" "$3"
report=$4
shift 4

each_with --step "$@"
run_both dialog "$report" --format json "${options[@]}"
shown=$(wc -l <"$work/native")
[ "$shown" -eq $# ] || fail "$# steps, but $shown were shown"
cmp "$work/native" "$work/win32"
echo "$shown equal steps"
