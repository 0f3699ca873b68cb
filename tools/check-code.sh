#!/usr/bin/env bash
# Format of all code, the #include lines against the table of rooms, and clang-tidy on what the native build compiles
# (Win32-only code is checked by its compiler's warnings). Needs a built build/native. Files that clang-tidy found clean
# before are not looked at again.
set -euo pipefail
cd "$(dirname "$0")/.."

mapfile -t all < <(git ls-files --cached --others --exclude-standard '*.cpp' '*.h')
clang-format --dry-run --Werror "${all[@]}"
echo "format: ${#all[@]} files are clean"
tools/check-includes.py
tools/clang_tidy.py
