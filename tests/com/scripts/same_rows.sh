#!/usr/bin/env bash
# The same report, natively and through COM, gives the same CSV, byte for byte. Usage:
#   same_rows.sh NATIVE_PROGRAM WIN32_PROGRAM ACCOUNT REPORT SETTING...
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/../common.sh"
compare_on "$1" "$2" "$3"
report=$4
shift 4

each_with --set "$@"
run_both report "$report" "${options[@]}" --format csv
lines=$(wc -l <"$work/native")
[ "$lines" -gt 10 ] || fail "only $lines lines: nothing to compare"
cmp "$work/native" "$work/win32" || diff "$work/native" "$work/win32" | head -20
cmp -s "$work/native" "$work/win32"
echo "$lines equal lines"
