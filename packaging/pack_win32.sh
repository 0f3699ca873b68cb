#!/usr/bin/env bash
# Makes the Win32 packages of what a build folder holds (Quillon.dll, QuillonWorkbench.dll and quillon.exe must be built):
# quillon-VERSION-win32.zip and quillon-VERSION-win32-setup.exe. The same files give the same packages, byte for byte; the
# date of everything in them is SOURCE_DATE_EPOCH (seconds since 1970).
# Usage: SOURCE_DATE_EPOCH=SECONDS pack_win32.sh BUILD_FOLDER OUTPUT_FOLDER
set -euo pipefail
build=$1
mkdir -p "$2"
output=$(cd "$2" && pwd)
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
: "${SOURCE_DATE_EPOCH:?set it to the date that the files in the packages are to have, in seconds since 1970}"
export SOURCE_DATE_EPOCH TZ=UTC LC_ALL=C
umask 022

version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
name=quillon-$version-win32
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --prefix "$work/$name" >/dev/null

# Without the fields that tell whose files they were and when they were read.
find "$work" -exec touch --date="@$SOURCE_DATE_EPOCH" {} +
rm -f "$output/$name.zip"
(cd "$work" && find "$name" -type f | sort | zip -q -X -9 "$output/$name.zip" -@)
echo "$output/$name.zip"

"$here/win32/make_installer.sh" "$work/$name" "$version" "$output/$name-setup.exe"
echo "$output/$name-setup.exe"
