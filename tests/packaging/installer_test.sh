#!/usr/bin/env bash
# The installer: installs silently, replaces an installed version, refuses to remove what is in use, takes everything back
# when the libraries cannot be registered, and uninstalls silently. After it the prefix is as it was. Usage:
# installer_test.sh FOLDER HOLD_FILE_PROGRAM
set -euo pipefail
folder=$1
hold_file=$2
. "$(dirname "${BASH_SOURCE[0]}")/wine_prefix.sh"
snapshot "$work/before"
setup=$folder/quillon-$version-win32-setup.exe
drive=$QUILLON_WINEPREFIX/drive_c
entry='HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\Quillon'

# The options that name a folder with blanks must not be in quotes, so they are passed on as several words.

# Into the usual folder.
expect_status 0 "$setup" /S
installed='C:\Program Files\Quillon'
mkdir "$work/zip"
unzip -q "$folder/quillon-$version-win32.zip" -d "$work/zip"
diff -r "$work/zip/quillon-$version-win32" "$drive/Program Files/Quillon" >"$work/differences" || true
diff -u - <(sed "s|$drive|C:|" "$work/differences") <<'END' || fail "what is installed is not what the archive holds"
Only in C:/Program Files/Quillon/licenses: nsis.txt
Only in C:/Program Files/Quillon: uninstall.exe
END
expect_working "$installed"

# Once more, into another folder, which is chosen: the first one is removed.
installed='C:\Reports by cost item (1)'
# shellcheck disable=SC2086
expect_status 0 "$setup" /S /D=$installed
[ ! -e "$drive/Program Files/Quillon" ] || fail "the version installed before is still there"
expect_working "$installed"
wine reg query "$entry" | tr -d '\r' >"$work/entry"
value() { sed -nE "s/^ *$1 +REG_(SZ|DWORD) +//p" "$work/entry"; }
for expected in "DisplayName=Quillon" "DisplayVersion=$version" "InstallLocation=$installed" "NoModify=0x1" "NoRepair=0x1" \
  "UninstallString=\"$installed\\uninstall.exe\"" "QuietUninstallString=\"$installed\\uninstall.exe\" /S"; do
  [ "$(value "${expected%%=*}")" = "${expected#*=}" ] ||
    fail "the list of installed programs has ${expected%%=*} \"$(value "${expected%%=*}")\" and should have $expected"
done

# While the library is in use, neither uninstalling nor installing changes anything.
wine "$hold_file" "$installed\\Quillon.dll" "$(windows_path "$work/held")" &
holder=$!
for _ in $(seq 100); do [ -e "$work/held" ] || sleep 0.1; done
[ -e "$work/held" ] || fail "hold_file did not start"
# shellcheck disable=SC2086
expect_status 12 "$installed\\uninstall.exe" /S _?=$installed
expect_status 12 "$setup" /S
[ ! -e "$drive/Program Files/Quillon" ] || fail "something is installed although the version before is in use"
expect_working "$installed"
rm "$work/held"
wait "$holder"

# What cannot be unregistered, for want of the file, is not removed; installing once more, into the same folder, mends it.
rm "$drive/Reports by cost item (1)/Quillon.dll"
# shellcheck disable=SC2086
expect_status 13 "$installed\\uninstall.exe" /S _?=$installed
expect_status 0 "$setup" /S
expect_working "$installed"

# A file of the user's in the folder outlives what was installed.
echo "mine" >"$drive/Reports by cost item (1)/notes.txt"
expect_status 0 "$installed\\uninstall.exe" /S
WINEPREFIX=$QUILLON_WINEPREFIX wineserver --wait
[ "$(cat "$drive/Reports by cost item (1)/notes.txt")" = mine ] || fail "the user's own file is gone"
[ "$(ls "$drive/Reports by cost item (1)")" = notes.txt ] || fail "installed files are still there"
rm -r "$drive/Reports by cost item (1)"
# The copy of itself that the uninstaller runs from goes when the machine starts the next time. Wine then removes the
# folder before the file in it, so the folder, empty, stays.
wine cmd /c exit
find "$drive"/users/*/Temp -maxdepth 1 -type d -name '~nsu*.tmp' -empty -delete
expect_as_before "$work/before"

# A library that cannot be registered.
broken=$work/zip/quillon-$version-win32
echo "not a library" >"$broken/QuillonWorkbench.dll"
: >"$broken/quillon.exe" # what it holds does not matter here, and makes packing slow
SOURCE_DATE_EPOCH=1700000000 "$root/packaging/win32/make_installer.sh" "$broken" "$version" "$work/broken-setup.exe"
expect_status 11 "$work/broken-setup.exe" /S
expect_as_before "$work/before"
echo "the installer installs, works, replaces, refuses and uninstalls without a trace"
