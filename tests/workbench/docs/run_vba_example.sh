#!/usr/bin/env bash
# Runs the VBA example of docs/clients.md as VBScript, which has no types and another way to print, and holds the issued
# amounts that it prints against the ledger. Usage: run_vba_example.sh GUIDE QUILLON_EXE ACCOUNT
set -euo pipefail
guide=$1
quillon=$2
account=$3
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../.." && pwd)
windows_path() { printf 'Z:%s' "${1//\//\\}"; }
script=$(mktemp --suffix=.vbs)
trap 'rm -f "$script"' EXIT

sed -n '/^```vba$/,/^```$/{/^```/!p}' "$guide" | sed -E 's/ As [A-Z][a-z]+//g; s/ByVal //; s/Debug\.Print/WScript.Echo/' >"$script"
echo 'IssuesByCostItem WScript.Arguments(0)' >>"$script"
actual=$("$root/tools/wine.sh" cscript //nologo "$(windows_path "$script")" "$(windows_path "$account")" </dev/null |
  tr -d '\r')

# What the parts of the year's issues come to by cost item, without lines that have no warehouse.
issues=$("$root/tools/wine.sh" "$quillon" sql --account "$account" --format json <<'SQL'
Select Ca_FxDef.cFxCode, Sum(item.iItemOutPrice)
From ia_subsidiary_Item item
Inner Join ia_subsidiary base On item.iSubID = base.AutoID
Inner Join Ca_FxDef On item.iItemID = Ca_FxDef.iFxID
Where base.bRdFlag = 0 And base.iYear = 2024 And base.iMonth > 0 And base.cWhCode Is Not Null
Group By Ca_FxDef.cFxCode Order By Ca_FxDef.cFxCode
SQL
)
# ["CI01","12.5000"] and "CI01 12.5" both become "CI01 12.5000".
expected=$(grep -o '\["CI[0-9]*","[-0-9.]*"\]' <<<"$issues" | tr -d '[]"' | tr ',' ' ' | awk '{printf "%s %.4f\n", $1, $2}')
[ -n "$expected" ] || {
  echo "the account has no cost items: $issues"
  exit 1
}
diff -u <(printf '%s\n' "$expected") <(awk '{printf "%s %.4f\n", $1, $2}' <<<"$actual")
