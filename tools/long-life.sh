#!/usr/bin/env bash
# The full form of the tests of long life: 10,000 reports in one process, 32 threads for two minutes, 1,000 reloads of
# the library, and a kill before every change to the file system. Prints what was measured, and pass or fail.
#
#   tools/long-life.sh           everything
#   tools/long-life.sh kills     one of: runs threads reloads kills
#
# QUILLON_RUNS, QUILLON_THREAD_SECONDS and QUILLON_RELOADS set other counts. Needs the native and the win32 build.
set -euo pipefail
cd "$(dirname "$0")/.."

export QUILLON_RUNS=${QUILLON_RUNS:-10000} QUILLON_THREAD_SECONDS=${QUILLON_THREAD_SECONDS:-120}
export QUILLON_RELOADS=${QUILLON_RELOADS:-1000} QUILLON_THREADS=32 QUILLON_EVERY_KILL=1
parts=("$@")
[ "${#parts[@]}" -gt 0 ] || parts=(runs threads reloads kills)

under_wine() { tools/wine.sh build/win32/bin/long_life_tests.exe --gtest_filter="$1"; }

status=0
log=$(mktemp)
trap 'rm -f "$log"' EXIT
for part in "${parts[@]}"; do
  case $part in
    runs) command=(under_wine 'Runs.*') ;;
    threads) command=(under_wine 'Threads.*') ;;
    reloads) command=(under_wine 'Reload.*') ;;
    kills) command=(build/native/bin/interruption_tests) ;;
    *)
      echo "long-life.sh: there is no part \"$part\"; the parts are runs, threads, reloads and kills" >&2
      exit 2
      ;;
  esac
  start=$SECONDS
  if "${command[@]}" >"$log" 2>&1; then
    outcome=pass
  else
    outcome=FAIL
    status=1
  fi
  measured=$(tr -d '\r' <"$log" | sed -n 's/^long life: [a-z]* | //p' | tr '\n' ' ')
  printf '%-8s  %-4s  %5d s  %s\n' "$part" "$outcome" "$((SECONDS - start))" "$measured"
  [ "$outcome" = pass ] || grep -vE '^\[ +(OK|RUN)|^$' "$log" | tail -n 40
done
exit $status
