#!/usr/bin/env bash
# Makes the Debian package of what a build folder holds (quillon must be built): quillon_VERSION_amd64.deb. The same files
# give the same package, byte for byte; the date of everything in it is SOURCE_DATE_EPOCH (seconds since 1970).
# Usage: SOURCE_DATE_EPOCH=SECONDS pack_deb.sh BUILD_FOLDER OUTPUT_FOLDER
set -euo pipefail
build=$1
output=$2
: "${SOURCE_DATE_EPOCH:?set it to the date that the files in the package are to have, in seconds since 1970}"
export SOURCE_DATE_EPOCH
# The package's folders get the rights that new folders get.
umask 022

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cpack --config "$build/CPackConfig.cmake" -B "$work" >"$work/log" 2>&1 || {
  cat "$work/log" >&2
  echo "pack_deb.sh: error: cpack cannot make the package of $build" >&2
  exit 1
}
mkdir -p "$output"
for package in "$work"/*.deb; do
  cp "$package" "$output/"
  echo "$output/$(basename "$package")"
done
