#!/usr/bin/env bash
# The native tests under the thread sanitizer, and under valgrind's memory check: a race, a use of memory that is not
# there or was never set, and memory that is definitely lost are errors.
#
#   tools/check-memory.sh             both
#   tools/check-memory.sh threads     one of: threads memory
#
# Both leave out account_memory_tests, which has an allocator of its own to count allocations, interruption_tests, which
# looks at another program's files, and the packages' tests. Valgrind, under which a program is some thirty times slower,
# also leaves out what makes thousands of reports; the sanitizers' builds run those.
set -euo pipefail
cd "$(dirname "$0")/.."

parts=("$@")
[ "${#parts[@]}" -gt 0 ] || parts=(threads memory)
not_for_threads='^(account_memory_tests|interruption_tests|packaging.*)'
for_valgrind=(frame_tests sfc_item_tests outsum_item_tests fx_detail_tests fx_wt_tests filters_tests tsql_values_tests
  tsql_engine_tests platform_tests)

for part in "${parts[@]}"; do
  case $part in
    threads)
      cmake --preset tsan >/dev/null
      cmake --build --preset tsan -- --quiet
      TSAN_OPTIONS=halt_on_error=1:exitcode=66 \
        ctest --preset tsan --no-tests=error --exclude-regex "$not_for_threads" --parallel "$(nproc)"
      ;;
    memory)
      cmake --preset native >/dev/null
      cmake --build --preset native --target "${for_valgrind[@]}" -- --quiet
      for test in "${for_valgrind[@]}"; do
        log=build/native/valgrind-$test.log
        if valgrind -q --leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite --error-exitcode=67 \
          "build/native/bin/$test" >"$log" 2>&1; then
          printf '%-20s  pass\n' "$test"
        else
          printf '%-20s  FAIL, see %s\n' "$test" "$log"
          status=1
        fi
      done
      ;;
    *)
      echo "check-memory.sh: there is no part \"$part\"; the parts are threads and memory" >&2
      exit 2
      ;;
  esac
done
exit "${status:-0}"
