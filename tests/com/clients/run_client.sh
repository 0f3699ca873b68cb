#!/usr/bin/env bash
# Runs a client on an account and compares every line that it prints, and its exit status, with the session that all
# clients have. Usage: run_client.sh CLIENT ACCOUNT (a script, or a program)
set -euo pipefail
client=$1
account=$2
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
windows_path() { printf 'Z:%s' "${1//\//\\}"; }

case $client in
  *.vbs | *.js) command=(cscript //nologo "$(windows_path "$client")") ;;
  *) command=("$client") ;;
esac
status=0
actual=$("$here/../../../tools/wine.sh" "${command[@]}" "$(windows_path "$account")" </dev/null) || status=$?
diff -u "$here/session.expected" <(printf '%s\n' "$actual" | tr -d '\r')
[ "$status" -eq 0 ] || {
  echo "$client ended with exit status $status"
  exit 1
}
