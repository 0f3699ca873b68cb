#!/usr/bin/env bash
# Registers the two servers in the private Wine prefix and makes a small account, for the tests that run scripts and
# quillon.exe. Usage: prepare.sh BIN_DIRECTORY ACCOUNT
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/../common.sh"
account=$2

cd "$1"
wine regsvr32 /s Quillon.dll
wine regsvr32 /s QuillonWorkbench.dll
rm -f "$account"
wine quillon.exe account new "$account" --rows 2000 --seed 7
