#!/usr/bin/env bash
# Makes the pictures of docs/pictures anew: each report as `--format html` writes it, with the settings of ./demo.sh,
# photographed by Chromium and brought down to few colours. Needs build/native/bin/quillon, and what neither build nor
# tests need: chromium, fonts-wqy-microhei (any font with Chinese characters will do) and pngquant.
set -euo pipefail
cd "$(dirname "$0")/.."

quillon=build/native/bin/quillon
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
account=$work/ledger.account
browser=$(command -v chromium || command -v chromium-browser || command -v google-chrome || true)

fail() {
  printf 'make-pictures: error: %s\n' "$*" >&2
  exit 1
}

[ -x "$quillon" ] || fail "$quillon is missing; run: cmake --preset native && cmake --build --preset native --target quillon"
[ -n "$browser" ] || fail "Chromium is missing; run: apt-get install chromium fonts-wqy-microhei pngquant"
command -v pngquant >/dev/null || fail "pngquant is missing; run: apt-get install pngquant"

# Chromium refuses its own sandbox to root; the pages are our own.
browser_options=(--headless --disable-gpu --hide-scrollbars)
[ "$(id -u)" -ne 0 ] || browser_options+=(--no-sandbox)

picture() { # NAME WIDTH,HEIGHT REPORT SETTING...
  local name=$1 size=$2
  shift 2
  "$quillon" report "$@" --account "$account" --format html -o "$work/$name.html"
  "$browser" "${browser_options[@]}" --user-data-dir="$work/profile" --window-size="$size" \
    --screenshot="$work/$name.png" "file://$work/$name.html" >"$work/browser.log" 2>&1 || {
    cat "$work/browser.log" >&2
    fail "Chromium made no picture of $name"
  }
  pngquant --force --strip --speed 1 16 --output "docs/pictures/$name.png" "$work/$name.png"
  printf 'docs/pictures/%s.png: %s bytes\n' "$name" "$(stat -c %s "docs/pictures/$name.png")"
}

"$quillon" account new "$account" --rows 20000 --seed 1
spring=(--set dKeepDate=2024-03-01..2024-04-30)
picture receipt-issue-balance 1165,745 sfc-item --set cModal=1 --limit 14
picture outbound-summary 1165,745 outsum-item --limit 12
picture detail-ledger 1735,700 fx-detail --set cInvCode=0301-00237 --set cWhCode=07 "${spring[@]}"
picture voucher-report 1165,745 fx-wt --set Inventory.cInvCode=0301-00237 --set cWhCode=07 "${spring[@]}"
