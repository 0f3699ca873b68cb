#!/usr/bin/env bash
# The same report, natively and through COM, gives the same CSV, byte for byte. Usage:
#   same_rows.sh NATIVE_PROGRAM WIN32_PROGRAM ACCOUNT REPORT SETTING...
set -euo pipefail
native=$1
win32=$2
account=$3
report=$4
shift 4
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
"$native" report "$report" --account "$work/native.account" "${settings[@]}" --format csv >"$work/native.csv"
"$root/tools/wine.sh" "$win32" report "$report" --account "Z:$work/win32.account" "${settings[@]}" --format csv \
  </dev/null >"$work/win32.csv"
lines=$(wc -l <"$work/native.csv")
[ "$lines" -gt 10 ] || {
  echo "only $lines lines: nothing to compare"
  exit 1
}
cmp "$work/native.csv" "$work/win32.csv" || diff "$work/native.csv" "$work/win32.csv" | head -20
cmp -s "$work/native.csv" "$work/win32.csv"
echo "$lines equal lines"
