#!/usr/bin/env bash
# Format of all code, and clang-tidy on changed code: what differs from $QUILLON_BASE (a commit), else from the newest
# commit that is more than a day old, else everything. Needs a configured build/native (compile commands).
set -euo pipefail
cd "$(dirname "$0")/.."

mapfile -t all < <(git ls-files --cached --others --exclude-standard '*.cpp' '*.h')
clang-format --dry-run --Werror "${all[@]}"
echo "format: ${#all[@]} files are clean"

base=${QUILLON_BASE:-$(git rev-list -1 --before='1 day ago' HEAD)}
changed=()
for file in "${all[@]}"; do
  # clang-tidy takes what the native build compiles; Win32-only code is held by its compiler's warnings.
  [[ $file == *.cpp ]] && grep -qF "/$file\"" build/native/compile_commands.json || continue
  if [ -z "$base" ] || ! git diff --quiet "$base" -- "$file"; then changed+=("$file"); fi
done
if [ "${#changed[@]}" -eq 0 ]; then
  echo "clang-tidy: nothing has changed"
  exit 0
fi
printf '%s\n' "${changed[@]}" | xargs -P "$(nproc)" -n 1 clang-tidy --quiet -p build/native 2>/dev/null
echo "clang-tidy: ${#changed[@]} changed files are clean"
