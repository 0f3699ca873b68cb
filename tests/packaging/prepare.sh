#!/usr/bin/env bash
# Packs what is built for Win32, and again under other settings, which must give the same, and makes what the tests of the
# packages need: a Wine prefix in which nothing has been installed yet, and a sample account. Usage: prepare.sh BUILD_FOLDER FOLDER VERSION
set -euo pipefail
build=$1
folder=$2
version=$3
. "$(dirname "${BASH_SOURCE[0]}")/../com/common.sh"

rm -rf "$folder"
mkdir -p "$folder"
echo "$version" >"$folder/version"
export SOURCE_DATE_EPOCH=1700000000
"$root/packaging/pack_win32.sh" "$build" "$folder"
(umask 077 && TZ=Asia/Shanghai "$root/packaging/pack_win32.sh" "$build" "$folder/again")
for again in "$folder"/again/*; do cmp "$folder/$(basename "$again")" "$again"; done

# Wine goes soon after its last program: what it wrote of the prefix is whole then.
export QUILLON_WINEPREFIX=$folder/prefix QUILLON_WINE_STAYS=2
(cd "$folder" && wine "$build/bin/quillon.exe" account new sample.account --rows 2000 --seed 7)
# The first program of a kind brings keys of Wine's own with it, so one of each that the tests use runs before.
wine cmd /c exit
printf 'Set shell = CreateObject("WScript.Shell")\r\n' >"$folder/first.vbs"
(cd "$folder" && wine cscript //nologo first.vbs)
WINEPREFIX=$QUILLON_WINEPREFIX wineserver --wait
