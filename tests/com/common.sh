# shellcheck shell=bash
# For the tests that run scripts and Win32 programs, to be sourced.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

# Ends the test. Usage: fail WORD...
fail() {
  printf 'failed: %s\n' "$*" >&2
  exit 1
}

# A path as Windows programs under Wine name it. Usage: windows_path PATH
windows_path() { printf 'Z:%s' "${1//\//\\}"; }

# Runs a Windows program; nothing is typed into it.
wine() { "$root/tools/wine.sh" "$@" </dev/null; }

# Runs a script of VBScript or JScript, or a program, on an account, and prints what it prints, with the line ends of this
# system; its exit status is the script's. Usage: run_on_account SCRIPT_OR_PROGRAM ACCOUNT
run_on_account() {
  local command=("$1") status=0 output
  case $1 in
    *.vbs | *.js) command=(cscript //nologo "$(windows_path "$1")") ;;
  esac
  output=$(wine "${command[@]}" "$(windows_path "$2")") || status=$?
  printf '%s\n' "$output" | tr -d '\r'
  return "$status"
}

# Runs as run_on_account and compares every line with a file; the exit status must be 0.
# Usage: expect_output EXPECTED SCRIPT_OR_PROGRAM ACCOUNT
expect_output() {
  local status=0 actual
  actual=$(run_on_account "$2" "$3") || status=$?
  diff -u "$1" <(printf '%s\n' "$actual")
  [ "$status" -eq 0 ] || fail "$2 ended with exit status $status"
}

# Makes the folder $work, which goes when the test ends, with a copy of an account for each of the two programs, so that
# neither waits for the other's lock. Usage: compare_on NATIVE_PROGRAM WIN32_PROGRAM ACCOUNT
compare_on() {
  native=$1
  win32=$2
  [ -x "$native" ] || fail "$native is not built: build the preset native first"
  work=$(mktemp -d)
  trap 'rm -rf "$work"' EXIT
  cp "$3" "$work/native.account"
  cp "$3" "$work/win32.account"
}

# Runs a command of quillon natively and through COM; what they print lies in $work/native and $work/win32.
# Usage: run_both COMMAND REPORT ARGUMENT...
run_both() {
  local command=$1 report=$2
  shift 2
  "$native" "$command" "$report" --account "$work/native.account" "$@" >"$work/native"
  wine "$win32" "$command" "$report" --account "Z:$work/win32.account" "$@" >"$work/win32"
}

# Sets the array `options` to OPTION VALUE for each value. Usage: each_with OPTION VALUE...
each_with() {
  local option=$1 value
  shift
  options=()
  for value in "$@"; do options+=("$option" "$value"); done
}
