#!/usr/bin/env bash
# Makes the installer of a folder that holds what it is to install. NSIS's terms are added to the folder's licences, since
# the installer's own code is NSIS's.
# Usage: SOURCE_DATE_EPOCH=SECONDS make_installer.sh FOLDER VERSION OUTPUT
set -euo pipefail
folder=$(cd "$1" && pwd)
version=$2
output=$3
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
: "${SOURCE_DATE_EPOCH:?set it to the date that the installed files are to have, in seconds since 1970}"
export SOURCE_DATE_EPOCH TZ=UTC LC_ALL=C
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cp /usr/share/doc/nsis/copyright "$folder/licenses/nsis.txt"
find "$folder" -exec touch --date="@$SOURCE_DATE_EPOCH" {} +

# The installer puts the files in, and takes the same files out again, one by one: others' files in the folder stay.
# Folders come before what is in them, and go after it.
installed() { printf '$INSTDIR\\%s' "${1//\//\\}"; }
while IFS= read -r inner; do
  printf 'CreateDirectory "%s"\n' "$(installed "$inner")" >>"$work/install.nsh"
done < <(cd "$folder" && find . -mindepth 1 -type d -printf '%P\n' | sort)
while IFS= read -r file; do
  printf 'File "/oname=%s" "%s"\n' "$(installed "$file")" "$folder/$file" >>"$work/install.nsh"
  printf 'Delete "%s"\n' "$(installed "$file")" >>"$work/remove.nsh"
done < <(cd "$folder" && find . -type f -printf '%P\n' | sort)
while IFS= read -r inner; do
  printf 'RMDir "%s"\n' "$(installed "$inner")" >>"$work/remove.nsh"
done < <(cd "$folder" && find . -mindepth 1 -type d -printf '%P\n' | sort --reverse)

size=$(find "$folder" -type f -printf '%s\n' | awk '{ bytes += $1 } END { printf "%d", (bytes + 1023) / 1024 }')
makensis -V2 -WX -NOCD "-DVERSION=$version" "-DSIZE_IN_KB=$size" "-DINSTALL_FILES=$work/install.nsh" \
  "-DREMOVE_FILES=$work/remove.nsh" "-DOUTPUT=$output" "$here/installer.nsi"
