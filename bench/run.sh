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
  [ -f "$work/$rows.account" ] || "$bin/quillon" account new "$work/$rows.account" --rows "$rows" --seed 1 >/dev/null
done

figure() { awk -v name="$2" '$1 == name { print $2 }' "$1"; } # FILE NAME

"$bin/filter_translation_bench" --benchmark_format=csv 2>/dev/null >"$work/filter.csv"
filter_us=$(awk -F, '/translate120Items/ { print $4 }' "$work/filter.csv")
"$bin/report_bench" "$work/$small.account" bench/receipt_issue_balance.sql bench/best_query.sql 7 >"$work/small.txt"
"$bin/report_bench" "$work/$large.account" bench/receipt_issue_balance.sql bench/best_query.sql 0 >"$work/large.txt"

missed=0
row() { # WHAT VALUE LIMIT
  local verdict
  verdict=$(awk -v value="$2" -v limit="$3" 'BEGIN { print (value + 0 <= limit + 0) ? "pass" : "FAIL" }')
  [ "$verdict" = pass ] || missed=1
  printf '%-66s %10.4g %10s  %s\n' "$1" "$2" "$3" "$verdict"
}
record() { printf '%-66s %10.4g\n' "$1" "$2"; }
quotient() { awk -v a="$1" -v b="$2" 'BEGIN { print a / b }'; }

printf '%-66s %10s %10s\n' "receipt/issue/balance by cost item, one year" value limit
row "filter translation, 120 items, microseconds" "$filter_us" 100
row "library's own share of a run, $small lines, percent" \
  "$(quotient "$(figure "$work/small.txt" own_share)" 0.01)" 1
row "run / same statements by hand in SQLite's SQL, $small lines" "$(figure "$work/small.txt" ratio)" 1.15
row "growth from $small to $large lines, first runs" \
  "$(quotient "$(figure "$work/large.txt" first_seconds)" "$(figure "$work/small.txt" first_seconds)")" 12
row "peak memory at $large lines, MiB" "$(figure "$work/large.txt" peak_mib)" 600
record "for the record: run / best query for the same rows" \
  "$(quotient "$(figure "$work/small.txt" report_seconds)" "$(figure "$work/small.txt" best_seconds)")"
record "for the record: run at $small lines, seconds" "$(figure "$work/small.txt" report_seconds)"
record "for the record: run at $large lines, seconds" "$(figure "$work/large.txt" first_seconds)"
exit "$missed"
