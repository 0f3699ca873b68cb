#!/usr/bin/env bash
# Sends a script to the endpoint as its head tells people to: send_script.sh ENDPOINT PROGRAM SCRIPT ACCOUNT, with PROGRAM
# the tsql or bsqldb to use. ACCOUNT is made when it is not there. Prints all that the program says; the exit status is
# the program's.
set -euo pipefail
endpoint=$1 program=$2 script=$3 account=$4

coproc server { exec "$endpoint" "$account"; }
server_process=$server_PID
read -r port <&"${server[0]}" || {
  echo "send_script.sh: the endpoint does not serve $account" >&2
  exit 2
}
FREETDSCONF=$(mktemp)
export FREETDSCONF
trap 'rm -f "$FREETDSCONF"' EXIT
printf '[here]\nhost = 127.0.0.1\nport = %s\ntds version = 7.4\nclient charset = UTF-8\n' "$port" >"$FREETDSCONF"

status=0
database=$(basename "$account")
case $(basename "$program") in
  tsql) "$program" -S here -D "$database" -U tester -P geheim -J UTF-8 <"$script" 2>&1 || status=$? ;;
  bsqldb) "$program" -S here -D "$database" -U tester -P geheim -i "$script" 2>&1 || status=$? ;;
  *)
    echo "send_script.sh: how $program takes a script is not known" >&2
    status=2
    ;;
esac

# The endpoint ends with its input.
input=${server[1]}
exec {input}>&-
wait "$server_process"
exit "$status"
