#!/usr/bin/env bash
# Runs a script under cscript on an account and compares every line that it prints, and its exit code, with what is
# expected. Usage: run_script.sh SCRIPT ACCOUNT
set -euo pipefail
script=$1
account=$2
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../.." && pwd)
windows_path() { printf 'Z:%s' "${1//\//\\}"; }

status=0
actual=$("$root/tools/wine.sh" cscript //nologo "$(windows_path "$script")" "$(windows_path "$account")" </dev/null) ||
  status=$?
diff -u "$script.expected" <(printf '%s\n' "$actual" | tr -d '\r')
[ "$status" -eq 0 ] || {
  echo "$script: cscript ended with exit code $status"
  exit 1
}
