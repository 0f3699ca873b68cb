#!/usr/bin/env bash
# Sets the machine up, builds everything and runs every test: native, native under the address and undefined-behaviour
# sanitizers, and Win32 under Wine; then checks format and clang-tidy. Exit status 0 means all of it passed.
#
#   ./test.sh                everything
#   ./test.sh native win32   these presets only, and no code checks
set -euo pipefail
cd "$(dirname "$0")"

say() { printf '\n=== %s\n' "$*"; }

tools/setup.sh
presets=("$@")
[ "${#presets[@]}" -gt 0 ] || presets=(native asan win32)

for preset in "${presets[@]}"; do
  say "building $preset"
  cmake --preset "$preset" >"build-$preset.log" 2>&1 || {
    cat "build-$preset.log"
    exit 1
  }
  rm -f "build-$preset.log"
  cmake --build --preset "$preset" -- --quiet
done

for preset in "${presets[@]}"; do
  say "testing $preset"
  # A program under Wine waits for wineserver about a third of the time: one more fills the processors.
  jobs=$(nproc)
  [ "$preset" != win32 ] || jobs=$((jobs + 1))
  ctest --preset "$preset" --parallel "$jobs" --no-tests=error --progress
done

if [ "$#" -eq 0 ]; then
  say "checking format and code"
  tools/check-code.sh
fi
