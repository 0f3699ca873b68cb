#!/usr/bin/env bash
# quillon.exe is killed at nine moments of its run while it writes an account, and while a report takes the place of an older
# file: the name is then free, or has all of the file, old or new; and what was left does not harm the next run.
# Usage: killed_program.sh QUILLON_EXE
# shellcheck source=program_under_wine.sh
source "$(dirname "${BASH_SOURCE[0]}")/program_under_wine.sh"
run() { "${program[@]}" "$@" >"$work/output" 2>&1; }
# Usage: killed_after SECONDS ARGUMENT...; true when the program was still at work.
killed_after() {
  local delay=$1 process
  shift
  "${program[@]}" "$@" >"$work/output" 2>&1 &
  process=$!
  sleep "$delay"
  kill -9 "$process" 2>/dev/null || true
  ! wait "$process" 2>/dev/null
}
account="Z:$work/killed.account"
new_account=(account new "$account" --rows 3000 --seed 2)
report=(report sfc-item --account "$account" --set cModal=1 --format csv -o "Z:$work/report.csv")
# The moments of a command: tenths of the time that it takes undisturbed, however fast the machine is.
moments_of() {
  local begin=$EPOCHREALTIME
  run "$@" || {
    cat "$work/output"
    return 1
  }
  awk -v begin="$begin" -v end="$EPOCHREALTIME" 'BEGIN { for (i = 1; i < 10; ++i) printf "%.3f\n", (end - begin) * i / 10 }'
}

run --version || fail "$(cat "$work/output")" # brings Wine up, which must not count
killed=0
moments=$(moments_of "${new_account[@]}") || fail "$moments"
rm "$work/killed.account"
for delay in $moments; do
  ! killed_after "$delay" "${new_account[@]}" || killed=$((killed + 1))
  if [ -e "$work/killed.account" ]; then
    run account check "$account" || fail "a new account was left broken after $delay s: $(cat "$work/output")"
    rm "$work/killed.account"
  fi
done
[ "$killed" -gt 0 ] || fail "no run was killed: nothing was tried"
run "${new_account[@]}" || fail "an account cannot be made after kills: $(cat "$work/output")"

moments=$(moments_of "${report[@]}") || fail "$moments"
cp "$work/report.csv" "$work/whole.csv"
for delay in $moments; do
  echo old >"$work/report.csv"
  ! killed_after "$delay" "${report[@]}" || killed=$((killed + 1))
  [ "$(cat "$work/report.csv")" = old ] || cmp "$work/report.csv" "$work/whole.csv" ||
    fail "a report was left broken after $delay s"
done
run "${report[@]}" || fail "a report cannot be made after kills: $(cat "$work/output")"
cmp "$work/report.csv" "$work/whole.csv"
echo "$killed kills"
