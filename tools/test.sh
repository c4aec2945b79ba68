#!/usr/bin/env bash
# Checks the order of layers, then builds and runs every suite twice: a plain build,
# and one under AddressSanitizer and UndefinedBehaviorSanitizer. Threaded parts run
# again under ThreadSanitizer, the Windows plug-in is cross-built and run under Wine,
# and each file reader is fuzzed for a short while.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
jobs=$(nproc)
fuzz_seconds=${VISTARIG_FUZZ_SECONDS:-20}
passed=0

# The order of layers first: a wrong include fails in a second, before any build.
echo "== layers"
bash "$root/tools/check-layers.sh"
passed=$((passed + 1))

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

# The community folder scan, the updater's workers and the file selector's scan run on
# threads of their own: their tests again under ThreadSanitizer (the selector's in the
# host, whose Mesa has threads of its own: tools/tsan.supp).
tsan_build="$root/build/tsan"
echo "== tsan build"
cmake -S "$root" -B "$tsan_build" -DCMAKE_BUILD_TYPE=Debug -DVISTARIG_TSAN=ON -DVISTARIG_BENCH=OFF >/dev/null
cmake --build "$tsan_build" -j"$jobs" --target vistarig_tests
echo "== tsan scan, updater and file selector thread tests"
TSAN_OPTIONS="halt_on_error=1:second_deadlock_stack=1:suppressions=$root/tools/tsan.supp" \
  "$tsan_build/tests/vistarig_tests" \
  --gtest_filter='CommunityScanThread*:CommunityServerTest.UpdaterThreads*:CommunityServerTest.Cancel*:FileScanThread*:FileDialogTest.Frames*' \
  | tee "$tsan_build/tsan.log"
tsan_count=$(sed -n 's/^\[  PASSED  \] \([0-9]*\) tests\?\..*/\1/p' "$tsan_build/tsan.log" | tail -n 1)
passed=$((passed + ${tsan_count:-0}))

# The Windows plug-in from the same sources, checked under Wine against the plain build's
# runner (tools/test-windows.sh installs MinGW-w64 and Wine when they are missing).
echo "== windows"
bash "$root/tools/test-windows.sh" "$root/build/plain/vistarig-sim" | tee "$root/build/windows-checks.log"
windows_count=$(sed -n 's/^windows: \([0-9]*\) passed, 0 failed$/\1/p' "$root/build/windows-checks.log" | tail -n 1)
[ -n "$windows_count" ] || { echo "test: the Windows checks did not finish" >&2; exit 1; }
passed=$((passed + windows_count))

# Every file reader fuzzed for a short while, seeded from the kept corpus.
echo "== fuzz smoke, ${fuzz_seconds}s a target"
bash "$root/tools/fuzz.sh" --seconds "$fuzz_seconds" | tee "$root/build/fuzz-smoke.log"
fuzz_count=$(grep -c ' 0 crashes$' "$root/build/fuzz-smoke.log" || true)
passed=$((passed + fuzz_count))
echo "== all suites passed"
echo "vistarig: $passed passed, 0 failed"
