#!/usr/bin/env bash
# Runs the VBA example of docs/clients.md as VBScript, which has no types and another way to print, and compares the issued
# amounts that it prints with the ledger. Usage: run_vba_example.sh GUIDE QUILLON_EXE ACCOUNT
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/guide_example.sh"
guide=$1
quillon=$2
account=$3

example "$guide" vba | sed -E 's/ As [A-Z][a-z]+//g; s/ByVal //; s/Debug\.Print/WScript.Echo/' >"$work/issues.vbs"
echo 'IssuesByCostItem WScript.Arguments(0)' >>"$work/issues.vbs"
actual=$(run_on_account "$work/issues.vbs" "$account")

# What the parts of the year's issues come to by cost item, without lines that have no warehouse.
expected=$(amounts_of "$quillon" "$account" <<'SQL'
Select Ca_FxDef.cFxCode, Sum(item.iItemOutPrice)
From ia_subsidiary_Item item
Inner Join ia_subsidiary base On item.iSubID = base.AutoID
Inner Join Ca_FxDef On item.iItemID = Ca_FxDef.iFxID
Where base.bRdFlag = 0 And base.iYear = 2024 And base.iMonth > 0 And base.cWhCode Is Not Null
Group By Ca_FxDef.cFxCode Order By Ca_FxDef.cFxCode
SQL
)
diff -u <(printf '%s\n' "$expected") <(four_places <<<"$actual")
