#!/usr/bin/env bash
# Runs the VBScript of the user guide under cscript on an account and compares the closing amounts that it prints with the
# ledger. Usage: run_guide_script.sh GUIDE QUILLON_EXE ACCOUNT
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/guide_example.sh"
guide=$1
quillon=$2
account=$3

example "$guide" vbs >"$work/guide.vbs"
actual=$(run_on_account "$work/guide.vbs" "$account")

# What the ledger's parts of the year come to by cost item, without lines that have no warehouse.
expected=$(amounts_of "$quillon" "$account" <<'SQL'
Select Ca_FxDef.cFxCode, Sum(IsNull(item.iItemInPrice, 0) - IsNull(item.iItemOutPrice, 0))
From ia_subsidiary_Item item
Inner Join ia_subsidiary base On item.iSubID = base.AutoID
Inner Join Ca_FxDef On item.iItemID = Ca_FxDef.iFxID
Where base.iYear = 2024 And base.cWhCode Is Not Null
Group By Ca_FxDef.cFxCode Order By Ca_FxDef.cFxCode
SQL
)
diff -u <(printf 'year 2024, view cross\n%s\n' "$expected") <(head -n 1 <<<"$actual" && tail -n +2 <<<"$actual" | four_places)
