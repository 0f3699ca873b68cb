#!/usr/bin/env bash
# The documents behind a row of a report, opened natively and through COM, are the same, byte for byte: the source
# document and the general-ledger voucher. Usage:
#   same_document.sh NATIVE_PROGRAM WIN32_PROGRAM ACCOUNT REPORT ROW SETTING...
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/../common.sh"
compare_on "$1" "$2" "$3"
report=$4
row=$5
shift 5

each_with --set "$@"
for action in Vouch Link; do
  run_both drill "$report" "${options[@]}" --row "$row" --action "$action" --format json
  grep -q '"member":"' "$work/native" || fail "no document was opened for $action: nothing to compare"
  cmp "$work/native" "$work/win32"
  grep -o '"member":"[A-Za-z]*"' "$work/native"
done
