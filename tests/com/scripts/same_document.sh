#!/usr/bin/env bash
# The documents behind a row of a report, opened natively and through COM, are the same, byte for byte: the source
# document and the general-ledger voucher. Usage:
#   same_document.sh NATIVE_PROGRAM WIN32_PROGRAM ACCOUNT REPORT ROW SETTING...
set -euo pipefail
native=$1
win32=$2
account=$3
report=$4
row=$5
shift 5
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../.." && pwd)
[ -x "$native" ] || {
  echo "$native is not built: build the preset native first"
  exit 1
}

settings=()
for setting in "$@"; do settings+=(--set "$setting"); done
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# Each run has an account of its own, so that neither waits for the other's lock.
cp "$account" "$work/native.account"
cp "$account" "$work/win32.account"
for action in Vouch Link; do
  arguments=("${settings[@]}" --row "$row" --action "$action" --format json)
  "$native" drill "$report" --account "$work/native.account" "${arguments[@]}" >"$work/native.json"
  "$root/tools/wine.sh" "$win32" drill "$report" --account "Z:$work/win32.account" "${arguments[@]}" \
    </dev/null >"$work/win32.json"
  grep -q '"member":"' "$work/native.json" || {
    echo "no document was opened for $action: nothing to compare"
    exit 1
  }
  cmp "$work/native.json" "$work/win32.json"
  grep -o '"member":"[A-Za-z]*"' "$work/native.json"
done
