#!/usr/bin/env bash
# Checks the examples of docs/clients.md as far as it can be done without Windows: each parses or compiles in its language
# (but PowerShell's), and every member that it asks of Quillon's, the platform's and ADO's objects is one of theirs.
set -euo pipefail
export LC_ALL=C
. "$(dirname "${BASH_SOURCE[0]}")/guide_example.sh"
guide=$root/docs/clients.md

example "$guide" vba >"$work/issues.bas"
example "$guide" powershell >"$work/issues.ps1"
example "$guide" csharp >"$work/Issues.cs"
example "$guide" python >"$work/issues.py"

python3 -m py_compile "$work/issues.py"
mcs -warnaserror -platform:x86 -r:Microsoft.CSharp.dll -out:"$work/Issues.exe" "$work/Issues.cs"

# What Quillon, the platform, the workbench and ADO offer.
{
  grep -ohE '\] HRESULT [A-Za-z_]+' "$root/component/quillon.idl" | sed 's/.* //'
  grep -ohE 'L"[A-Za-z_]+"' "$root/component/platform_bindings.h" "$root"/workbench/com/*.cpp | sed -E 's/^L"(.*)"$/\1/'
} | sort -u >"$work/members"

status=0
check_members() { # FILE PATTERN: the last word of what the pattern finds is a member
  local asked unknown
  asked=$(grep -oE "$2" "$work/$1" | grep -oE "[A-Za-z_]+'?\$" | tr -d "'" | sort -u)
  [ "$(wc -l <<<"$asked")" -ge 3 ] || {
    echo "$1: its members are no longer found by $2"
    status=1
  }
  unknown=$(comm -23 - "$work/members" <<<"$asked")
  [ -z "$unknown" ] || {
    echo "$1 asks for what no object has: $unknown"
    status=1
  }
}
objects='(wb|e|rawFilter|control|report|rows|DataSource|FilterList\([^)]*\)|Fields\([^)]*\))'
check_members issues.bas "\\b$objects\\.[A-Za-z_]+"
check_members Issues.cs "\\b$objects\\.[A-Za-z_]+"
check_members issues.py "\\b$objects\\.[A-Za-z_]+"
check_members issues.ps1 "\\\$$objects\\.[A-Za-z_]+"
check_members issues.ps1 "(Get-Result|Set-Value) (\\\$[a-z]+|\([^()]*\)) '[A-Za-z_]+'"
exit "$status"
