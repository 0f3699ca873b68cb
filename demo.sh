#!/usr/bin/env bash
# Shows the four reports by cost item: receipt/issue/balance, the outbound summary, the detail ledger and the voucher
# report of one item, these two with documents behind their rows. They are made by Quillon.dll through COM from a ledger
# of 20,000 lines, each with the defaults of its filter dialog. Sets the machine up and builds first; what is there
# already is kept, so the second run takes seconds. Says at its end how to open the desk on that ledger. Takes no arguments.
set -euo pipefail
cd "$(dirname "$0")"

case ${1:-} in
  '') ;;
  -h | --help)
    sed -n '2,/^set /{s/^# //p}' "$0"
    exit 0
    ;;
  *)
    echo "demo.sh: takes no arguments, not \"$1\"; see ./demo.sh --help" >&2
    exit 2
    ;;
esac

demo=build/demo
win32=build/win32/bin
account=$demo/ledger-20000.account

say() { printf 'demo %d:%02d: %s\n' $((SECONDS / 60)) $((SECONDS % 60)) "$*" >&2; }

build() { # PRESET TARGET...
  local preset=$1 log=$demo/build-$1.log
  shift
  say "building for $preset: $*"
  : >"$log"
  # A terminal sees how far it is.
  local shown=/dev/null
  [ ! -t 2 ] || shown=/dev/stderr
  if ! { cmake --preset "$preset" && cmake --build --preset "$preset" --target "$@"; } 2>&1 | tee "$log" |
    sed -un 's/^\(\[[0-9]*\/[0-9]*\]\).*/\1/p' | tr '\n' '\r' >$shown; then
    tail -n 40 "$log" >&2
    say "error: the build failed; the whole log is in $log"
    exit 1
  fi
}

# Win32 programs get pipes for all three streams: Wine then passes their UTF-8 through as it is.
wine() { tools/wine.sh "$@" </dev/null 2> >(cat >&2) | cat; }

say "packages where they are missing, Quillon for Win32, a sample account, the four reports from it"
say "takes about 3 minutes on two cores the first time, seconds after it"
tools/setup.sh demo
mkdir -p "$demo"
build win32 Quillon QuillonWorkbench quillon

if [ ! -f "$account" ]; then
  say "making the sample account of 20,000 ledger lines: $account"
  wine "$win32/quillon.exe" account new "$account" --rows 20000 --seed 1
fi

say "registering Quillon.dll in the private Wine prefix (.wine)"
wine regsvr32 /s "$win32/Quillon.dll"
wine regsvr32 /s "$win32/QuillonWorkbench.dll"

say "running the reports through COM: quillon.exe -> Quillon.dll -> ADO look-alike -> account"
say "receipt/issue/balance by cost item, with each statement"
wine "$win32/quillon.exe" report sfc-item --account "$account" --set cModal=1 --limit 14 --explain
say "outbound summary as a tree: class, cost item, warehouse and inventory within each other"
wine "$win32/quillon.exe" report outsum-item --account "$account" --set cModal=1 --layout tree --limit 14

# An item that is kept neither by batch nor by free items, so that item and warehouse are all its ledger needs.
item=(--set cInvCode=0301-00237 --set cWhCode=07)
spring=(--set dKeepDate=2024-03-01..2024-04-30)
say "detail ledger of one item in two months: receipts, issues and running balance"
wine "$win32/quillon.exe" report fx-detail --account "$account" "${item[@]}" "${spring[@]}"
say "the source document of its line 8, and the general-ledger voucher that it is posted to"
wine "$win32/quillon.exe" drill fx-detail --account "$account" "${item[@]}" "${spring[@]}" --row RowNo=8 --action Vouch
wine "$win32/quillon.exe" drill fx-detail --account "$account" "${item[@]}" "${spring[@]}" --row RowNo=8 --action Voucher

vouchers=(--set Inventory.cInvCode=0301-00237 --set cWhCode=07)
say "cost-item voucher report of the same item: what a unit costs and how much of each cost item goes into it"
wine "$win32/quillon.exe" report fx-wt --account "$account" "${vouchers[@]}" "${spring[@]}"
say "the general-ledger voucher of its finished goods receipt"
wine "$win32/quillon.exe" drill fx-wt --account "$account" "${vouchers[@]}" "${spring[@]}" --row cVouType=10 --action Voucher

page() { # REPORT FILE SETTING...
  local report=$1 file=$2
  shift 2
  wine "$win32/quillon.exe" report "$report" --account "$account" "$@" --format html -o "$demo/$file"
  say "a page to read and print, with charts: $PWD/$demo/$file"
}
page sfc-item receipt-issue-balance.html --set cModal=1
page outsum-item outbound-summary.html
page fx-detail detail-ledger.html "${item[@]}"
page fx-wt voucher-report.html "${vouchers[@]}"

# Wine breaks what is longer than the terminal is wide, and with it the link, unless it goes through a pipe.
say "the desk shows the same reports in your browser, from the filter over every row to the document behind it;"
say "this command prints the link to open, and Ctrl+C ends it:"
printf '\n  tools/wine.sh %s/quillon.exe serve --account %s | cat\n' "$win32" "$account"
