#!/usr/bin/env bash
# Makes the pictures of docs/pictures anew: each layout of each report, and a pivot, as `--format html` writes it, with the
# settings of ./demo.sh, and the desk with a ledger, with a chart and with the checks of an account, photographed by Chromium
# and brought down to few colours. Needs build/native/bin/quillon, what tools/setup-browser.sh installs for the desk's tests,
# and pngquant.
set -euo pipefail
cd "$(dirname "$0")/.."

quillon=build/native/bin/quillon
work=$(mktemp -d)
desk=
trap '[ -z "$desk" ] || kill "$desk"; rm -rf "$work"' EXIT
account=$work/ledger.account
browser=$(command -v chromium || command -v chromium-browser || command -v google-chrome || true)

fail() {
  printf 'make-pictures: error: %s\n' "$*" >&2
  exit 1
}

[ -x "$quillon" ] || fail "$quillon is missing; run: cmake --preset native && cmake --build --preset native --target quillon"
[ -n "$browser" ] || fail "Chromium is missing; run: tools/setup-browser.sh"
command -v pngquant >/dev/null || fail "pngquant is missing; run: apt-get install pngquant"

# Chromium refuses its own sandbox to root; the pages are our own.
browser_options=(--headless --disable-gpu --hide-scrollbars)
[ "$(id -u)" -ne 0 ] || browser_options+=(--no-sandbox)

# The day of printing would make each run's pictures new: pages are shown without it.
picture() { # REPORT LAYOUT WIDTH,HEIGHT OPTION...
  local report=$1 layout=$2 size=$3
  shift 3
  page "$report" --layout "$layout" "$@"
  photograph "$report-$layout" "$size"
}

pivot() { # REPORT WIDTH,HEIGHT OPTION...
  page "$1" "${@:3}"
  photograph "$1-pivot" "$2"
}

page() { # REPORT OPTION...
  "$quillon" report "$1" --account "$account" --company 东山机械厂 "${@:2}" --format html -o "$work/page.html"
  sed -i 's|<dt>打印日期</dt><dd>[0-9-]*</dd>||' "$work/page.html"
}

photograph() { # NAME WIDTH,HEIGHT
  "$browser" "${browser_options[@]}" --user-data-dir="$work/profile" --window-size="$2" \
    --screenshot="$work/$1.png" "file://$work/page.html" >"$work/browser.log" 2>&1 || {
    cat "$work/browser.log" >&2
    fail "Chromium made no picture of $1"
  }
  keep "$1"
}

keep() { # NAME
  pngquant --force --strip --speed 1 16 --output "docs/pictures/$1.png" "$work/$1.png"
  local bytes
  bytes=$(stat -c %s "docs/pictures/$1.png")
  printf 'docs/pictures/%s.png: %s bytes\n' "$1" "$bytes"
  [ "$bytes" -lt 150000 ] || fail "docs/pictures/$1.png is too large to be kept; cut it"
}

"$quillon" account new "$account" --rows 20000 --seed 1
spring=(--set dKeepDate=2024-03-01..2024-04-30)
item=(--set cInvCode=0301-00237 --set cWhCode=07)
picture sfc-item summary 960,700 --set cModal=1 --limit 14
picture sfc-item tree 1110,700 --set cModal=1 --limit 16
picture sfc-item lines 1130,560 --set cModal=1 --set cWhCode=07 --limit 16
picture outsum-item summary 850,760
picture outsum-item tree 620,700 --set cModal=1 --limit 16
pivot outsum-item 920,740 --set cModal=1 --set dKeepDate=2024-01-01..2024-06-30 --where cFXCode=CI06..CI14 \
  --pivot 成本项目分类1级,成本项目/月份/金额
picture outsum-item lines 1110,560 --set cModal=1 --limit 16 \
  --columns cVouType,cVouCode,dVouDate,cWhName,cInvCode,cInvName,RdName,cFXCode,cFXName,iQuantity,iMoney,iFXMoney
picture fx-detail ledger 850,900 "${item[@]}"
mv docs/pictures/fx-detail-ledger.png docs/pictures/fx-detail-charts.png
sed -i '/<figure>/,/<.figure>/d' "$work/page.html" # the ledger stands below its charts
photograph fx-detail-ledger 1210,700
picture fx-detail columnar 1260,620 "${item[@]}"
picture fx-detail lines 1500,560 "${item[@]}" "${spring[@]}" \
  --columns RowNo,dKeepDate,cVouType,cVouCode,cPZCode,cPZdigest,iQuantity,iCost,iPrice,cfxCName,cfxName,iItemQuantity,iItemPrice
picture fx-wt vouchers 1340,700 --set Inventory.cInvCode=0301-00237 --set cWhCode=07 "${spring[@]}"
picture fx-wt lines 1360,560 --set Inventory.cInvCode=0301-00237 --set cWhCode=07 "${spring[@]}" \
  --columns dKeepDate,cVouCode,cInvCode,cInvName,iAInQuantity,iAInPrice,iAOutQuantity,iAOutPrice,cfxCode,cfxName,iUnitUsed,iUnitCost,iIteminPrice,iItemOutPrice

serve() {
  : >"$work/link"
  "$quillon" serve --account "$account" >"$work/link" &
  desk=$!
  until [ -s "$work/link" ]; do sleep 0.1; done
}

serve
node tools/picture_desk.mjs "$(cat "$work/link")" "$work/desk.png" "$work/desk-chart.png"
kill "$desk"
keep desk
keep desk-chart

# Cost items that do not sum to their line, and one whose class is not there.
"$quillon" sql --account "$account" <<'END'
Update ia_subsidiary_Item Set iItemInPrice = iItemInPrice + 0.05 Where AutoID In (Select Top 6 Min(AutoID)
  From ia_subsidiary_Item Where bRdFlag = 1 And iMonth > 0 And iYear = 2024 Group By iSubID Order By iSubID)
go
Update Ca_FxDef Set cFxCID = 999 Where iFxID = (Select Max(iFxID) From Ca_FxDef)
END
serve
node tools/picture_desk.mjs "$(cat "$work/link")" --checks "$work/desk-checks.png"
keep desk-checks
