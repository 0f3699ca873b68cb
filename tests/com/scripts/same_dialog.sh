#!/usr/bin/env bash
# The same steps of a filter dialog, natively and through COM, show the same, byte for byte. Usage:
#   same_dialog.sh NATIVE_PROGRAM WIN32_PROGRAM ACCOUNT REPORT STEP...
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

arguments=(--format json)
for step in "$@"; do arguments+=(--step "$step"); done
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# Each run has an account of its own, so that neither waits for the other's lock.
cp "$account" "$work/native.account"
cp "$account" "$work/win32.account"
"$native" dialog "$report" --account "$work/native.account" "${arguments[@]}" >"$work/native.json"
"$root/tools/wine.sh" "$win32" dialog "$report" --account "Z:$work/win32.account" "${arguments[@]}" \
  </dev/null >"$work/win32.json"
shown=$(wc -l <"$work/native.json")
[ "$shown" -eq $# ] || {
  echo "$# steps, but $shown were shown"
  exit 1
}
cmp "$work/native.json" "$work/win32.json"
echo "$shown equal steps"
