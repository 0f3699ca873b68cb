#!/usr/bin/env bash
# Builds the fuzzers of tests/fuzz with clang and runs them one after the other, beginning with the kept inputs.
#
#   tools/fuzz.sh                   every fuzzer for 600 seconds
#   tools/fuzz.sh 60 tsql csv       these for 60 seconds
#
# What is new stays in build/fuzz/found/NAME, where the next run goes on; an input that breaks a promise is kept in
# build/fuzz/failed/NAME and ends its fuzzer. Exit status 1 when any did.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-600}
shift || true
targets=("$@")
[ "${#targets[@]}" -gt 0 ] || targets=(api arguments csv filter lists request tsql)
jobs=${QUILLON_FUZZ_JOBS:-$(nproc)}

cmake --preset fuzz >build-fuzz.log 2>&1 || {
  cat build-fuzz.log
  exit 1
}
rm -f build-fuzz.log
cmake --build build/fuzz --parallel "$jobs" --target "${targets[@]/#/fuzz_}" -- --quiet

status=0
for target in "${targets[@]}"; do
  found=build/fuzz/found/$target
  failed=build/fuzz/failed/$target
  log=build/fuzz/$target.log
  mkdir -p "$found" "$failed"
  inputs=("$found" "tests/fuzz/corpus/$target")
  [ ! -d "tests/fuzz/regressions/$target" ] || inputs+=("tests/fuzz/regressions/$target")
  options=(-max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 -print_final_stats=1 -artifact_prefix="$failed/")
  [ ! -f "tests/fuzz/$target.dict" ] || options+=(-dict="tests/fuzz/$target.dict")
  if build/fuzz/bin/fuzz_"$target" "${options[@]}" "${inputs[@]}" >"$log" 2>&1; then
    result="nothing found"
  else
    result="FOUND: see $log and $failed"
    status=1
  fi
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
  echo "fuzz $target: ${runs:-?} runs, $result"
done
exit "$status"
