# shellcheck shell=bash
# For the tests that run the examples of the guides, to be sourced.
. "$(dirname "${BASH_SOURCE[0]}")/../../com/common.sh"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The example in LANGUAGE of a guide. Usage: example GUIDE LANGUAGE
example() {
  local text
  text=$(sed -n "/^\`\`\`$2\$/,/^\`\`\`\$/{/^\`\`\`/!p}" "$1")
  [ -n "$text" ] || fail "$1 has no example in $2"
  printf '%s\n' "$text"
}

# Cost items and amounts, as lines "CI01 12.5", with four decimal places each.
four_places() { awk '{printf "%s %.4f\n", $1, $2}'; }

# What a query finds in the account by cost item, as such lines. The query is on standard input.
# Usage: amounts_of QUILLON_EXE ACCOUNT
amounts_of() {
  local rows amounts
  rows=$("$root/tools/wine.sh" "$1" sql --account "$2" --format json)
  amounts=$(grep -o '\["CI[0-9]*","[-0-9.]*"\]' <<<"$rows" | tr -d '[]"' | tr ',' ' ' | four_places)
  [ -n "$amounts" ] || fail "the account has no cost items: $rows"
  printf '%s\n' "$amounts"
}
