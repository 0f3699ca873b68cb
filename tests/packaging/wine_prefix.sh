# shellcheck shell=bash
# For the tests of the Win32 packages, to be sourced: a Wine prefix of their own, and what is in it. Takes $folder, where
# the prefix, the packages and the sample account lie (prepare.sh). A failed check ends the test.
. "$(dirname "${BASH_SOURCE[0]}")/../com/common.sh"
# Wine goes soon after its last program: what it wrote of the prefix is whole then.
export QUILLON_WINEPREFIX=$folder/prefix QUILLON_WINE_STAYS=2
version=$(<"$folder/version")
work=$(mktemp -d)
# Nothing of this test keeps running, whatever it ends with.
trap 'WINEPREFIX="$QUILLON_WINEPREFIX" wineserver -k 2>/dev/null || true; rm -rf "$work"' EXIT

# A program's exit status. Usage: expect_status STATUS PROGRAM ARGUMENT...; what it prints goes to $work/output.
expect_status() {
  local expected=$1 status=0
  shift
  wine "$@" >"$work/output" 2>&1 || status=$?
  [ "$status" -eq "$expected" ] || {
    cat "$work/output" >&2
    fail "$1 ended with $status, not with $expected"
  }
}

# All that a prefix consists of, in the state after every program in it has ended: each folder, each file with the digest
# of its content, each key and value of the registry. What Wine writes anew by itself is left out: the times at which keys
# were written, the date of its display driver, which is that of its start, and the key of its debugger, which it starts
# for a program that ends too slowly for it; that a program of ours ended as it should shows in its exit status.
# Usage: snapshot FILE
snapshot() {
  local hive
  WINEPREFIX=$QUILLON_WINEPREFIX wineserver --wait
  (
    cd "$QUILLON_WINEPREFIX"
    find . -type d | LC_ALL=C sort
    find . ! -type d ! -name '*.reg' -printf '%p %l\n' | LC_ALL=C sort
    find . -type f ! -name '*.reg' -exec sha256sum {} + | LC_ALL=C sort -k 2
    for hive in *.reg; do
      printf '\n%s\n' "$hive"
      sed -E -e '/^#time=/d' -e 's/^(\[.*\]) [0-9]+$/\1/' -e '/^"DriverDate(Data)?"=/d' \
        -e '/^\[Software\\\\Wine\\\\WineDbg\]/,/^$/d' "$hive"
    done
  ) >"$1"
}

# Usage: expect_as_before BEFORE, which snapshot wrote.
expect_as_before() {
  snapshot "$work/after"
  diff -u "$1" "$work/after" || fail "the prefix is not as it was before"
}

# That the libraries are registered, from a folder, and work: classes by ProgID, versions, a report run from a script and
# one run by quillon.exe. Usage: expect_working FOLDER, as Windows names it.
expect_working() {
  local installed=$1 actual
  expect_status 0 cscript //nologo "$(windows_path "$root/tests/packaging/installed.vbs")" \
    "$installed" "$(windows_path "$folder/sample.account")"
  diff -u <(sed "s/@VERSION@/$version/" "$root/tests/packaging/installed.vbs.expected") <(tr -d '\r' <"$work/output") ||
    fail "what is installed in $installed does not work as it should"
  expect_status 0 "$installed\\quillon.exe" --version
  actual=$(tr -d '\r' <"$work/output")
  [ "$actual" = "quillon $version" ] || fail "quillon.exe --version says: $actual"
  expect_status 0 "$installed\\quillon.exe" report sfc-item --account "$(windows_path "$folder/sample.account")" \
    --set cModal=1 --format json
  # The result table: a line a cost item.
  grep -q '"CI01"' "$work/output" || fail "the report of quillon.exe has no line of the cost item CI01"
}
