#!/usr/bin/env bash
# Counts the lines of the project's own code that its tests run, natively and under Wine together, and holds them against
# the least share that each folder has to reach. Reports: build/coverage.txt (a line a file, with the lines that no test
# runs). Takes builds of its own, which is why ./test.sh does without it.
#
#   tools/coverage.sh
set -euo pipefail
cd "$(dirname "$0")/.."

declare -A least=([frame]=95 [reports]=95 [filters]=95 [workbench]=85)

tools/setup.sh
run() { # PRESET TARGETS TESTS: builds the targets and runs the tests that the pattern names
  # Killed programs leave no counts, and what counts writes files, which the tests of kills count as the program's own.
  cmake --preset "$1" >/dev/null
  # shellcheck disable=SC2086
  cmake --build --preset "$1" --target $2 -- --quiet
  find "build/$1" -name '*.gcda' -delete
  ctest --preset "$1" --parallel "$(nproc)" --no-tests=error --progress --tests-regex "$3" \
    --exclude-regex interruption_tests
}
# Under Wine, what is not built natively: the COM edge and the workbench's automation objects.
run coverage all .
run coverage-win32 'Quillon QuillonWorkbench automation_tests component_tests component_binding_tests workbench_com_tests' \
  '^(automation_tests|component_tests|component_binding_tests|workbench_com_tests)$'

# What was counted, in build/PRESET.json. Functions are left out: they are not asked for, and
# gcovr 5.2 ends when two builds find one at different lines.
counts() { # PRESET GCOV
  gcovr --root . --object-directory "build/$1" --gcov-executable "$2" --json - \
    --filter '(automation|component|frame|reports|filters|workbench)/' "build/$1" |
    python3 -c 'import json, sys
counted = json.load(sys.stdin)
for file in counted["files"]:
    file["functions"] = []
json.dump(counted, sys.stdout)' >"build/$1.json"
}
counts coverage gcov
counts coverage-win32 i686-w64-mingw32-gcov-posix

together() { gcovr --root . -a build/coverage.json -a build/coverage-win32.json "$@"; }
together --output build/coverage.txt
status=0
for folder in frame reports filters workbench; do
  if counted=$(together --filter "$folder/" --print-summary --fail-under-line "${least[$folder]}" --output build/coverage-folder.txt 2>/dev/null); then
    verdict=pass
  else
    verdict=FAIL status=1
  fi
  printf '%s %s/ has to reach %s %%; %s\n' "$verdict" "$folder" "${least[$folder]}" "$(grep '^lines' <<<"$counted")"
done
exit "$status"
