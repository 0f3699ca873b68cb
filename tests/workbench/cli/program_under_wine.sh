# Sourced by the tests that run quillon.exe under Wine, each with the program as its argument. Gives them a folder that goes
# with the test, $work, which Windows calls Z:$work.
# shellcheck shell=bash
set -euo pipefail
quillon=$1
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() {
  echo "failed: $*"
  exit 1
}
# shellcheck disable=SC2034 # for whoever sources this
program=("$root/tools/wine.sh" "$quillon")
exec </dev/null
