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
win32=build/win32/bin
work=build/bench
mkdir -p "$work"

# Before whatever else the machine does, where that is allowed: the medians then need fewer runs.
first=()
if chrt -f 50 true 2>/dev/null; then first=(chrt -f 50); fi

build() { # PRESET TARGET...
  cmake --preset "$1" >"$work/configure.log"
  cmake --build --preset "$1" --target "${@:2}" -- --quiet >"$work/build.log"
}
build native quillon report_bench program_bench filter_translation_bench writers_bench desk_result pivot_bench
build win32 Quillon library_load_bench

# Whoever asks for so many lines wants to know how long they take, too.
if [ "$large" = 10000000 ]; then rm -f "$work/$large.account"; fi
for rows in "$small" "$large"; do
  account=$work/$rows.account
  [ -f "$account" ] ||
    "$bin/program_bench" 1 "$bin/quillon" account new "$account" --rows "$rows" --seed 1 >"$work/made-$rows.txt"
  busy=$work/$rows-busy.account
  if [ ! -f "$busy" ]; then
    cp "$account" "$busy.part"
    "$bin/quillon" sql --account "$busy.part" bench/busy_inventory.sql >/dev/null
    mv "$busy.part" "$busy"
  fi
done

measure() { # NAME REPORT ACCOUNT HAND.sql BEST.sql|- RUNS
  "${first[@]}" "$bin/report_bench" "$2" "$work/$3.account" "bench/$4" "$5" "$6" >"$work/$1.txt"
}
program() { # NAME RUNS PROGRAM ARGUMENT...
  "${first[@]}" "$bin/program_bench" "${@:2}" >"$work/$1.txt"
}
figure() { awk -v name="$2" '$1 == name { print $2 }' "$work/$1.txt"; } # MEASUREMENT NAME
quotient() { awk -v a="$1" -v b="$2" 'BEGIN { print a / b }'; }
difference() { awk -v a="$1" -v b="$2" 'BEGIN { print a - b }'; }

missed=0
judged() { # WHAT VALUE LIMIT WORDS CONDITION
  local verdict
  verdict=$(awk -v value="$2" -v limit="$3" 'BEGIN { print ('"$5"') ? "pass" : "FAIL" }')
  [ "$verdict" = pass ] || missed=1
  printf '%-78s %10.4g %9s %-4s %s\n' "$1" "$2" "$4" "$3" "$verdict"
}
row() { judged "$1" "$2" "$3" "at most" "value + 0 <= limit + 0"; }         # WHAT VALUE LIMIT
row_least() { judged "$1" "$2" "$3" "at least" "value + 0 >= limit + 0"; } # WHAT VALUE LIMIT
record() { printf '%-78s %10.4g\n' "for the record: $1" "$2"; }
title() { printf '\n%s\n' "$1"; }

# What a month may cost of the year, where the fixed part of a report no longer counts: a month is a twelfth.
month=0.2
if [ "$large" -ge 10000000 ]; then month=0.1; fi

# The median of three first runs, each in a process of its own; one run alone where it takes minutes.
first_seconds() { # REPORT ACCOUNT
  local runs=3
  if [ "$2" -ge 10000000 ]; then runs=1; fi
  for run in $(seq "$runs"); do
    "${first[@]}" "$bin/report_bench" "$1" "$work/$2.account" - - 0 | awk '$1 == "first_seconds" { print $2 }'
  done | sort -n | sed -n "$(((runs + 1) / 2))p"
}

summary() { # NAME REPORT TITLE RUNS LIMIT
  local name=$1
  measure "$name-small" "$2" "$small" "$name.sql" "bench/${name}_best.sql" "$4"
  measure "$name-large" "$2" "$large" "$name.sql" - 0
  title "$3, one year"
  row "library's own share of a run, $small lines, percent" "$(quotient "$(figure "$name-small" own_share)" 0.01)" 1
  row "run / same statements by hand in SQLite's SQL, $small lines" "$(figure "$name-small" ratio)" "$5"
  local small_seconds large_seconds
  small_seconds=$(first_seconds "$2" "$small")
  large_seconds=$(first_seconds "$2" "$large")
  row "one month / the year, $small lines" "$(quotient "$(first_seconds "$2/month" "$small")" "$small_seconds")" 0.2
  row "one month / the year, $large lines" "$(quotient "$(first_seconds "$2/month" "$large")" "$large_seconds")" "$month"
  row "growth from $small to $large lines, first runs" "$(quotient "$large_seconds" "$small_seconds")" 12
  row "peak memory at $large lines, MiB" "$(figure "$name-large" peak_mib)" 600
  record "run / best query for the same rows, $small lines" \
    "$(quotient "$(figure "$name-small" report_seconds)" "$(figure "$name-small" best_seconds)")"
  record "run at $small lines, seconds" "$(figure "$name-small" report_seconds)"
  record "run at $large lines, seconds" "$large_seconds"
}
summary receipt_issue_balance sfc-item "receipt/issue/balance by cost item" 7 0.5
summary outbound_summary outsum-item "outbound summary by cost-item class" 7 0.5
summary voucher_report fx-wt "cost-item voucher report" 5 0.4

measure ledger-small fx-detail:2000 "$small-busy" detail_ledger.sql - 7
measure ledger-large fx-detail:2000 "$large-busy" detail_ledger.sql - 7
measure ledger-short fx-detail:20 "$large" detail_ledger.sql - 7
title "detail ledger of one inventory, one year, 2000 lines of its own"
row "library's own share of a run, $small lines, percent" "$(quotient "$(figure ledger-small own_share)" 0.01)" 1
row "run / same statements by hand in SQLite's SQL, among $small lines" "$(figure ledger-small ratio)" 0.9
row "run / same statements by hand in SQLite's SQL, among $large lines" "$(figure ledger-large ratio)" 0.9
row "growth from $small to $large lines in the account" \
  "$(quotient "$(figure ledger-large report_seconds)" "$(figure ledger-small report_seconds)")" 1.5
row "peak memory at $large lines, MiB" "$(figure ledger-large peak_mib)" 600
record "run among $large lines, seconds" "$(figure ledger-large report_seconds)"
row "20 lines of its own, run / same statements by hand" "$(figure ledger-short ratio)" 1.3
record "20 lines of its own, seconds" "$(figure ledger-short report_seconds)"

# A run has its peak while its rows are made and summed; what a format keeps of them comes on top.
title "writing the outbound summary of $large lines"
output() { # NAME FORMAT OPTION...
  program "$1" 1 "$bin/quillon" report outsum-item --account "$work/$large.account" --set iYear=2023 \
    --format "$2" -o "$work/output.$2" "${@:3}"
}
output one-row html --limit 1
for format in html csv json xlsx; do
  output "$format" "$format"
  row "memory beyond that of a page with one row: $format, MiB" \
    "$(difference "$(figure "$format" peak_mib)" "$(figure one-row peak_mib)")" 8
done
record "rows" "$(awk 'END { print NR - 1 }' "$work/output.csv")"
record "size of the CSV file, MiB" "$(quotient "$(stat -c %s "$work/output.csv")" 1048576)"
rm -f "$work"/output.*

title "from rows to people: receipts, issues and balance of $small lines"
for run in 1 2 3 4 5; do
  began=$EPOCHREALTIME
  "${first[@]}" "$bin/quillon" report sfc-item --account "$work/$small.account" --set iYear=2023 --lang en \
    --format csv -o "$work/rows.csv" --explain 2>"$work/explain.txt"
  difference "$EPOCHREALTIME" "$began" | tr '\n' ' '
  sed -n 's/^[0-9]* statements, \([0-9.]*\) ms .*/\1/p' "$work/explain.txt" # in the account
done | awk '{ print $1 / $2 * 1000 }' | sort -n >"$work/whole.txt"
row "whole program to CSV / its statements" "$(sed -n 3p "$work/whole.txt")" 1.3
rm -f "$work/rows.csv"
"${first[@]}" "$bin/writers_bench" "$work/$small.account" 2023 >"$work/writers.txt"
row_least "CSV, MB a second" "$(figure writers csv_mb_s)" 100
row_least "JSON, MB a second" "$(figure writers json_mb_s)" 100
row_least "XLSX, MB of sheet a second" "$(figure writers xlsx_sheet_mb_s)" 15

title "the desk: a result of 700000 rows and 130 columns"
"${first[@]}" "$bin/desk_result" 700000 >"$work/desk.txt"
row "first rows, in three orders, seconds" "$(figure desk first_rows_seconds)" 1
row "answer to a sort / the same query alone" "$(figure desk sort_ratio)" 3
record "first rows of those that meet a condition, seconds" "$(figure desk first_rows_of_some_seconds)"

title "pivots of a result of 700000 rows"
"${first[@]}" "$bin/pivot_bench" >"$work/pivot.txt"
row "cost items, seconds" "$(figure pivot one)" 3
row "warehouses and cost items by months, seconds" "$(figure pivot three)" 3
row "inventories and cost items by months with shares, seconds" "$(figure pivot many)" 3
record "cells of the largest" "$(figure pivot many_cells)"

title "the programs"
remove_moved() { rm -rf "$work"/moved.*; }
remove_moved
# Rows of all tables, six to a ledger line.
moved=$("$bin/quillon" account export "$work/$small.account" "$work/moved.first" | sed 's/.* with \([0-9,]*\) rows .*/\1/; s/,//g')
mover() { # NAME TITLE ARGUMENT...
  program "$1" 1 "$bin/quillon" account "${@:3}"
  row_least "$2, rows a second" "$(quotient "$moved" "$(figure "$1" seconds)")" 200000
}
mover generator "sample generator" new "$work/moved.account" --rows "$small" --seed 1
mover exported "export" export "$work/$small.account" "$work/moved.csv"
mover imported "import" import "$work/moved.again" "$work/moved.csv"
mover scripted "script" script "$work/$small.account" "$work/moved.sql"
mover compared "diff, rows of each account" diff "$work/$small.account" "$work/moved.again"
remove_moved
record "sample generator, ledger lines a second" "$(quotient "$small" "$(figure generator seconds)")"
if [ "$large" = 10000000 ]; then
  row "$large lines generated in, seconds" "$(figure "made-$large" seconds)" 180
  record "memory of that, MiB" "$(figure "made-$large" peak_mib)"
fi
program help 21 "$bin/quillon" --help
row "start of quillon --help, milliseconds" "$(quotient "$(figure help seconds)" 0.001)" 20
"$bin/filter_translation_bench" --benchmark_format=csv 2>/dev/null >"$work/filter.csv"
row "filter translation, 120 items, microseconds" "$(awk -F, '/translate120Items/ { print $4 }' "$work/filter.csv")" 100
row "Quillon.dll, MB" "$(quotient "$(stat -c %s "$win32/Quillon.dll")" 1000000)" 1.5
for ((run = 0; run < 7; ++run)); do
  "${first[@]}" tools/wine.sh "$win32/library_load_bench.exe"
done | tr -d '\r' | sort -n >"$work/load.txt"
row "Quillon.dll loaded and first class created under Wine, milliseconds" "$(sed -n 4p "$work/load.txt")" 50
exit "$missed"
