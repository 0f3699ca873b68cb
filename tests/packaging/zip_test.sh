#!/usr/bin/env bash
# The zip archive: unpacked into a folder with blanks in its path, registered and unregistered by its scripts, called from
# elsewhere; between the two all of it works, and after it the prefix is as it was. Usage: zip_test.sh FOLDER
set -euo pipefail
folder=$1
. "$(dirname "${BASH_SOURCE[0]}")/wine_prefix.sh"
snapshot "$work/before"

mkdir "$work/by cost item (1)"
unzip -q "$folder/quillon-$version-win32.zip" -d "$work/by cost item (1)"
package="$work/by cost item (1)/quillon-$version-win32"
# The files that whoever gets the archive needs to find; the documents are those of the source.
(cd "$package" && find . -type f ! -path './docs/*' -printf '%P\n' | LC_ALL=C sort) >"$work/files"
diff -u - "$work/files" <<'END' || fail "the archive does not hold the files that it should"
CHANGELOG.md
Quillon.dll
Quillon.tlb
QuillonWorkbench.dll
README.md
SECURITY.md
licenses/README.txt
licenses/boost.txt
licenses/chart.js.txt
licenses/cli11.txt
licenses/gcc-runtime.txt
licenses/gpl-3.txt
licenses/libxlsxwriter.txt
licenses/mingw-w64.txt
licenses/mpl-2.0.txt
licenses/nlohmann-json.txt
licenses/regular-table.txt
licenses/sqlite.txt
licenses/utf8proc.txt
licenses/zlib.txt
quillon.exe
register.cmd
unregister.cmd
END
diff -r "$root/docs" "$package/docs" || fail "the documents are not those of the source"
for script in register unregister; do
  [ "$(grep -c $'\r$' "$package/$script.cmd")" -eq "$(wc -l <"$package/$script.cmd")" ] ||
    fail "$script.cmd has lines that do not end with CR LF"
done
says() { tr -d '\r' <"$work/output" | grep -qxF "$1" || fail "this is missing in what was printed: $1 - $(cat "$work/output")"; }
script() { windows_path "$package/$1.cmd"; }

expect_status 0 cmd /c call "$(script register)"
says "Quillon is registered."
expect_working "$(windows_path "$package")"
expect_status 0 cmd /c call "$(script unregister)"
says "Quillon is not registered any more."
expect_as_before "$work/before"

# A library that is not one cannot be registered, and then nothing is.
mv "$package/QuillonWorkbench.dll" "$work/kept.dll"
echo "not a library" >"$package/QuillonWorkbench.dll"
expect_status 1 cmd /c call "$(script register)"
says "error: QuillonWorkbench.dll could not be registered: regsvr32 ended with 3. Run this script as an administrator."
rm "$package/QuillonWorkbench.dll"
expect_status 1 cmd /c call "$(script register)"
says "error: QuillonWorkbench.dll is not beside this script. Unpack the whole package into one folder and run the script there."
expect_status 1 cmd /c call "$(script unregister)"
says "error: QuillonWorkbench.dll is not beside this script, and only it knows what to take out. Unpack the package again, beside it."
expect_as_before "$work/before"
echo "the zip archive registers, works and unregisters without a trace"
