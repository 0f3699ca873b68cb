#!/usr/bin/env bash
# Eight quillon.exe at once on one account, through COM: each of the four reports comes out as it does alone, and the account
# is as it was.
# Usage: parallel_reports.sh QUILLON_EXE
# shellcheck source=program_under_wine.sh
source "$(dirname "${BASH_SOURCE[0]}")/program_under_wine.sh"
account="Z:$work/shared.account"
report() { # NAME OUTPUT
  local settings=()
  [ "$1" != fx-detail ] || settings=(--set cInvCode=0402-00019 --set cWhCode=04)
  "${program[@]}" report "$1" --account "$account" "${settings[@]}" --format csv -o "Z:$work/$2" >"$work/$2.log" 2>&1
}

"${program[@]}" account new "$account" --rows 1000 --seed 5 --years 1 >"$work/new.log" 2>&1 || fail "$(cat "$work/new.log")"
cp "$work/shared.account" "$work/before"
for name in sfc-item outsum-item fx-detail fx-wt; do
  report "$name" alone.csv || fail "$name alone: $(cat "$work/alone.csv.log")"
  [ "$(wc -l <"$work/alone.csv")" -gt 2 ] || fail "$name has no rows"
  processes=()
  for i in 1 2 3 4 5 6 7 8; do
    report "$name" "$i.csv" &
    processes+=($!)
  done
  for i in "${!processes[@]}"; do
    wait "${processes[$i]}" || fail "$name, one of eight: $(cat "$work/$((i + 1)).csv.log")"
    cmp "$work/alone.csv" "$work/$((i + 1)).csv" || fail "$name has other rows than alone"
  done
  echo "$name: 8 at once, rows as alone"
done
cmp "$work/before" "$work/shared.account" || fail "the account has changed"
[ ! -e "$work/shared.account-journal" ] || fail "a journal is left"
