#!/usr/bin/env bash
# Registers the two servers in the private Wine prefix and makes a small account, for the tests that run scripts and
# quillon.exe. Usage: prepare.sh BIN_DIRECTORY ACCOUNT
set -euo pipefail
bin=$1
account=$2
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../.." && pwd)

cd "$bin"
"$root/tools/wine.sh" regsvr32 /s Quillon.dll </dev/null
"$root/tools/wine.sh" regsvr32 /s QuillonWorkbench.dll </dev/null
rm -f "$account"
"$root/tools/wine.sh" quillon.exe account new "$account" --rows 2000 --seed 7 </dev/null
