#!/usr/bin/env bash
# Runs the VBScript of the user guide under cscript on an account and holds the closing amounts that it prints against
# the ledger. Usage: run_guide_script.sh GUIDE QUILLON_EXE ACCOUNT
set -euo pipefail
guide=$1
quillon=$2
account=$3
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../.." && pwd)
windows_path() { printf 'Z:%s' "${1//\//\\}"; }
script=$(mktemp --suffix=.vbs)
trap 'rm -f "$script"' EXIT

sed -n '/^```vbs$/,/^```$/{/^```/!p}' "$guide" >"$script"
[ -s "$script" ] || {
  echo "$guide has no script"
  exit 1
}
actual=$("$root/tools/wine.sh" cscript //nologo "$(windows_path "$script")" "$(windows_path "$account")" </dev/null |
  tr -d '\r')

# What the ledger's parts of the year come to by cost item, without lines that have no warehouse.
balances=$("$root/tools/wine.sh" "$quillon" sql --account "$account" --format json <<'SQL'
Select Ca_FxDef.cFxCode, Sum(IsNull(item.iItemInPrice, 0) - IsNull(item.iItemOutPrice, 0))
From ia_subsidiary_Item item
Inner Join ia_subsidiary base On item.iSubID = base.AutoID
Inner Join Ca_FxDef On item.iItemID = Ca_FxDef.iFxID
Where base.iYear = 2024 And base.cWhCode Is Not Null
Group By Ca_FxDef.cFxCode Order By Ca_FxDef.cFxCode
SQL
)
# ["CI01","12.5000"] and "CI01 12.5" both become "CI01 12.5000".
expected=$(grep -o '\["CI[0-9]*","[-0-9.]*"\]' <<<"$balances" | tr -d '[]"' | tr ',' ' ' | awk '{printf "%s %.4f\n", $1, $2}')
[ -n "$expected" ] || {
  echo "the account has no cost items: $balances"
  exit 1
}
diff -u <(printf 'year 2024, view cross\n%s\n' "$expected") \
  <(awk 'NR > 1 {printf "%s %.4f\n", $1, $2; next} {print}' <<<"$actual")
