#!/usr/bin/env bash
# Sets the machine up, builds Quillon and runs its tests. Exit status 0 means that all of it passed. `./test.sh --help`.
set -euo pipefail
cd "$(dirname "$0")"

usage() {
  cat <<'HELP'
./test.sh                 natively and for Win32 under Wine: what to run while working
./test.sh --all           adds the sanitizers, the desk in a browser, format and clang-tidy: what a change has to pass
./test.sh PRESET...       these builds only: native, win32, asan
HELP
}

presets=()
everything=false
for argument in "$@"; do
  case $argument in
    native | win32 | asan) presets+=("$argument") ;;
    --all) everything=true ;;
    -h | --help)
      usage
      exit 0
      ;;
    *)
      echo "test.sh: there is no preset or option \"$argument\"; see ./test.sh --help" >&2
      exit 2
      ;;
  esac
done
if $everything; then
  if [ "${#presets[@]}" -gt 0 ]; then
    echo "test.sh: --all runs every preset; name either it or presets" >&2
    exit 2
  fi
  presets=(native win32 asan)
  plan="native, Win32 under Wine, native with sanitizers; then the desk in a browser, format and clang-tidy"
  takes="about 35 minutes on two cores the first time, 15 minutes once all is built"
elif [ "${#presets[@]}" -eq 0 ]; then
  presets=(native win32)
  plan="native, and Win32 under Wine"
  takes="about 12 minutes on two cores the first time, 5 minutes once all is built"
else
  plan=${presets[*]}
  takes="up to 8 minutes each on two cores the first time"
fi

step() { printf '\n=== %d:%02d  %s\n' $((SECONDS / 60)) $((SECONDS % 60)) "$*"; }

printf 'test.sh: packages where they are missing, then build and tests: %s\n' "$plan"
printf 'test.sh: takes %s\n' "$takes"

step "setting up"
if $everything; then tools/setup.sh all; else tools/setup.sh test; fi

build() { # PRESET TARGET...
  local preset=$1 log=build-$1.log
  shift
  step "building $preset: $*"
  if ! cmake --preset "$preset" >"$log" 2>&1; then
    cat "$log"
    exit 1
  fi
  rm -f "$log"
  # In a terminal ninja shows how far it is.
  local quiet=(-- --quiet)
  [ ! -t 1 ] || quiet=()
  cmake --build --preset "$preset" --target "$@" "${quiet[@]}"
}

for preset in "${presets[@]}"; do
  # The Win32 program is compared with the native one.
  [ "$preset" != win32 ] || build native quillon
  build "$preset" all
done
! $everything || build native benchmarks

for preset in "${presets[@]}"; do
  step "testing $preset"
  # A program under Wine waits for wineserver about a third of the time: one more fills the processors.
  jobs=$(nproc)
  [ "$preset" != win32 ] || jobs=$((jobs + 1))
  ctest --preset "$preset" --parallel "$jobs" --progress
done

if $everything; then
  step "testing the desk in a browser"
  tools/desk-tests.sh
  step "checking format and code"
  tools/check-code.sh
fi
step "everything passed"
