#!/usr/bin/env bash
# Builds and runs every suite twice: a plain build, and one under AddressSanitizer and
# UndefinedBehaviorSanitizer. Threaded parts run again under ThreadSanitizer, and each
# file reader is fuzzed for a short while.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
jobs=$(nproc)
fuzz_seconds=${VISTARIG_FUZZ_SECONDS:-20}
passed=0

run_suite() {
  local name=$1; shift
  local build="$root/build/$name"
  echo "== $name build"
  cmake -S "$root" -B "$build" "$@" >/dev/null
  cmake --build "$build" -j"$jobs"
  echo "== $name tests"
  (cd "$build" && ctest --output-on-failure -j"$jobs" --timeout 600) | tee "$build/ctest.log"
  local count
  count=$(sed -n 's/.*tests passed, 0 tests failed out of \([0-9]*\).*/\1/p' "$build/ctest.log" | tail -n 1)
  passed=$((passed + ${count:-0}))
}

run_suite plain -DCMAKE_BUILD_TYPE=RelWithDebInfo
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
  run_suite asan -DCMAKE_BUILD_TYPE=Debug -DVISTARIG_SANITIZE=ON -DVISTARIG_BENCH=OFF

# The community folder scan runs on its own thread: its tests again under ThreadSanitizer.
tsan_build="$root/build/tsan"
echo "== tsan build"
cmake -S "$root" -B "$tsan_build" -DCMAKE_BUILD_TYPE=Debug -DVISTARIG_TSAN=ON -DVISTARIG_BENCH=OFF >/dev/null
cmake --build "$tsan_build" -j"$jobs" --target vistarig_tests
echo "== tsan community scan tests"
TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1 "$tsan_build/tests/vistarig_tests" --gtest_filter='CommunityScanThread*' \
  | tee "$tsan_build/tsan.log"
tsan_count=$(sed -n 's/^\[  PASSED  \] \([0-9]*\) tests\?\..*/\1/p' "$tsan_build/tsan.log" | tail -n 1)
passed=$((passed + ${tsan_count:-0}))

if ls "$root"/fuzz/fuzz_*.cpp >/dev/null 2>&1; then
  build="$root/build/fuzz"
  echo "== fuzz build"
  cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
    -DVISTARIG_FUZZ=ON -DVISTARIG_TESTS=OFF -DVISTARIG_BENCH=OFF >/dev/null
  cmake --build "$build" -j"$jobs"
  for src in "$root"/fuzz/fuzz_*.cpp; do
    name=$(basename "$src" .cpp)
    corpus="$root/fuzz/corpus/${name#fuzz_}"
    work=$(mktemp -d)
    [ -d "$corpus" ] && cp -r "$corpus"/. "$work"/
    echo "== fuzz $name for ${fuzz_seconds}s"
    status=0
    "$build/fuzz/$name" -max_total_time="$fuzz_seconds" -max_len=8192 -print_final_stats=1 "$work" \
      > "$work.log" 2>&1 || status=$?
    grep -E "^(Done|stat::number_of_executed_units|==[0-9]+==|SUMMARY)" "$work.log" || true
    if [ "$status" -ne 0 ]; then tail -n 40 "$work.log"; echo "fuzz $name failed"; exit 1; fi
    rm -f "$work.log"
    rm -rf "$work"
    passed=$((passed + 1))
  done
fi
echo "== all suites passed"
echo "vistarig: $passed passed, 0 failed"
