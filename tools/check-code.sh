#!/usr/bin/env bash
# Format of all code, the #include lines against the table of rooms, the catalogue of messages, and clang-tidy on what is compiled for Linux (for
# Win32-only code the compiler's warnings stand in). Nothing has to be built first; what clang-tidy found clean before is
# not looked at again.
set -euo pipefail
cd "$(dirname "$0")/.."

mapfile -t all < <(git ls-files --cached --others --exclude-standard '*.cpp' '*.h')
clang-format --dry-run --Werror "${all[@]}"
echo "format: ${#all[@]} files are clean"
tools/check-includes.py
tools/check-messages.py
tools/clang_tidy.py
