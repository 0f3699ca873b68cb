#!/usr/bin/env bash
# Runs the benchmarks and prints one table: what was measured, the limit, pass or fail. Exit status 1 when a limit is
# missed. Ratios are taken within one run; absolute times are for the record.
#
#   bench/run.sh [LARGE]     ledger lines of the large account (1000000)
set -euo pipefail
cd "$(dirname "$0")/.."
small=100000
large=${1:-1000000}
bin=build/native/bin
work=build/bench
mkdir -p "$work"

cmake --preset native >"$work/configure.log"
cmake --build --preset native --target quillon report_bench filter_translation_bench -- --quiet

for rows in "$small" "$large"; do
  account=$work/$rows.account
  [ -f "$account" ] || "$bin/quillon" account new "$account" --rows "$rows" --seed 1 >/dev/null
  busy=$work/$rows-busy.account
  if [ ! -f "$busy" ]; then
    cp "$account" "$busy.part"
    "$bin/quillon" sql --account "$busy.part" bench/busy_inventory.sql >/dev/null
    mv "$busy.part" "$busy"
  fi
done

"$bin/filter_translation_bench" --benchmark_format=csv 2>/dev/null >"$work/filter.csv"
filter_us=$(awk -F, '/translate120Items/ { print $4 }' "$work/filter.csv")

measure() { # NAME REPORT ACCOUNT HAND.sql BEST.sql|- RUNS
  "$bin/report_bench" "$2" "$work/$3.account" "bench/$4" "$5" "$6" >"$work/$1.txt"
}
best=bench/best_query.sql
measure balance-small sfc-item "$small" receipt_issue_balance.sql "$best" 7
measure balance-large sfc-item "$large" receipt_issue_balance.sql "$best" 0
measure ledger-small fx-detail:2000 "$small-busy" detail_ledger.sql - 7
measure ledger-large fx-detail:2000 "$large-busy" detail_ledger.sql - 7
measure ledger-short fx-detail:20 "$large" detail_ledger.sql - 7

figure() { awk -v name="$2" '$1 == name { print $2 }' "$work/$1.txt"; } # MEASUREMENT NAME
quotient() { awk -v a="$1" -v b="$2" 'BEGIN { print a / b }'; }
missed=0
row() { # WHAT VALUE LIMIT
  local verdict
  verdict=$(awk -v value="$2" -v limit="$3" 'BEGIN { print (value + 0 <= limit + 0) ? "pass" : "FAIL" }')
  [ "$verdict" = pass ] || missed=1
  printf '%-78s %10.4g %10s  %s\n' "$1" "$2" "$3" "$verdict"
}
record() { printf '%-78s %10.4g\n' "$1" "$2"; }
title() { printf '\n%-78s %10s %10s\n' "$1" value limit; }

title "receipt/issue/balance by cost item, one year"
row "filter translation, 120 items, microseconds" "$filter_us" 100
row "library's own share of a run, $small lines, percent" "$(quotient "$(figure balance-small own_share)" 0.01)" 1
row "run / same statements by hand in SQLite's SQL, $small lines" "$(figure balance-small ratio)" 1.15
row "growth from $small to $large lines, first runs" \
  "$(quotient "$(figure balance-large first_seconds)" "$(figure balance-small first_seconds)")" 12
row "peak memory at $large lines, MiB" "$(figure balance-large peak_mib)" 600
record "for the record: run / best query for the same rows" \
  "$(quotient "$(figure balance-small report_seconds)" "$(figure balance-small best_seconds)")"
record "for the record: run at $small lines, seconds" "$(figure balance-small report_seconds)"
record "for the record: run at $large lines, seconds" "$(figure balance-large first_seconds)"

title "detail ledger of one inventory, one year, 2000 lines of its own"
row "run / same statements by hand in SQLite's SQL, among $large lines" "$(figure ledger-large ratio)" 1.15
row "growth from $small to $large lines in the account" \
  "$(quotient "$(figure ledger-large report_seconds)" "$(figure ledger-small report_seconds)")" 1.5
record "for the record: run among $large lines, seconds" "$(figure ledger-large report_seconds)"
record "for the record: 20 lines of its own, run / same statements by hand" "$(figure ledger-short ratio)"
record "for the record: 20 lines of its own, seconds" "$(figure ledger-short report_seconds)"
exit "$missed"
