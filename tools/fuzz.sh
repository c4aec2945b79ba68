#!/usr/bin/env bash
# Fuzzes every file reader (or the ones named) with libFuzzer under AddressSanitizer and
# UndefinedBehaviorSanitizer, seeded from the corpus kept in fuzz/corpus/<target>/, and
# prints one line per target: executions, executions a second, result.
#
#   bash tools/fuzz.sh [--seconds N | --runs N] [--keep] [--minimise] [--logs DIR] [--no-build] [TARGET...]
#
# --seconds N  run each target for N seconds (default 20)
# --runs N     run each target for N executions instead
# --keep       merge what the run found into the kept corpus (only inputs that reach new code)
# --minimise   first shrink the kept corpus to the inputs that reach code no other does;
#              hand-made seeds (any name but libFuzzer's 40 hex digits) always stay
# --logs DIR   keep each target's libFuzzer log (and any crash input) in DIR
# --no-build   use the programs as built (for runs started side by side)
# TARGET       a name such as camera_file (the program fuzz_camera_file); all by default
#
# A target is fuzz/fuzz_<name>.cpp and hands the bytes to the plug-in's own reader from
# memory (a text and its size, or fmemopen for a reader of a FILE*), never through a
# file on disk, so it runs tens of thousands of times a second; see fuzz/README.md.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
seconds=20
runs=""
keep=0
minimise=0
logs=""
build_first=1
targets=()
while [ $# -gt 0 ]; do
  case "$1" in
    --seconds) seconds=$2; shift 2 ;;
    --runs) runs=$2; shift 2 ;;
    --keep) keep=1; shift ;;
    --minimise) minimise=1; shift ;;
    --logs) logs=$(mkdir -p "$2" && cd "$2" && pwd); shift 2 ;;
    --no-build) build_first=0; shift ;;
    -h|--help) sed -n '2,19p' "$0"; exit 0 ;;
    *) targets+=("$1"); shift ;;
  esac
done
if [ ${#targets[@]} -eq 0 ]; then
  for src in "$root"/fuzz/fuzz_*.cpp; do name=$(basename "$src" .cpp); targets+=("${name#fuzz_}"); done
fi

build="${VISTARIG_FUZZ_BUILD:-$root/build/fuzz}"  # another build of the targets, for runs beside a rebuild
if [ "$build_first" -eq 1 ]; then
  cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
    -DVISTARIG_FUZZ=ON -DVISTARIG_TESTS=OFF -DVISTARIG_BENCH=OFF >/dev/null
  cmake --build "$build" -j"$(nproc)" >/dev/null
fi

# Work folders on tmpfs where there is one: a run writes every input that reaches new
# code, hundreds in a short run, and making those files on the shared disk cost a
# quarter of a camera-file run's processor time.
scratch=${TMPDIR:-/tmp}
if [ -d /dev/shm ] && [ -w /dev/shm ]; then scratch=/dev/shm; fi

hand_made() { [[ ! "$(basename "$1")" =~ ^[0-9a-f]{40}$ ]]; }

export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
failed=0
for name in "${targets[@]}"; do
  program="$build/fuzz/fuzz_$name"
  [ -x "$program" ] || { echo "fuzz $name: no such target"; failed=1; continue; }
  corpus="$root/fuzz/corpus/$name"
  mkdir -p "$corpus"
  if [ "$minimise" -eq 1 ]; then
    kept=$(mktemp -d -p "$scratch")
    for seed in "$corpus"/*; do [ -f "$seed" ] && hand_made "$seed" && cp "$seed" "$kept"/; done
    "$program" -merge=1 -max_len=8192 "$kept" "$corpus" > "$kept.log" 2>&1 || true
    for input in "$corpus"/*; do
      [ -f "$input" ] && ! hand_made "$input" && [ ! -e "$kept/$(basename "$input")" ] && rm -f "$input"
    done
    rm -rf "$kept" "$kept.log"
  fi
  work=$(mktemp -d -p "$scratch")
  log="$work.log"
  if [ -n "$logs" ]; then log="$logs/$name.log"; fi
  cp -r "$corpus"/. "$work"/
  limit=(-max_total_time="$seconds")
  [ -n "$runs" ] && limit=(-runs="$runs")
  status=0
  # The machine is shared: besides libFuzzer's rate by the clock, the rate by the
  # processor time the run had tells what the target itself does.
  timer=()
  [ -x /usr/bin/time ] && timer=(/usr/bin/time -f "%U %S" -o "$work.cpu")
  (cd "$work" && exec "${timer[@]}" "$program" "${limit[@]}" -max_len=8192 -print_final_stats=1 \
    -artifact_prefix="$work/" "$work" > "$log" 2>&1) || status=$?
  cpu=$(awk '{ s = $1 + $2 } END { print s + 0 }' "$work.cpu" 2>/dev/null || echo 0)
  rm -f "$work.cpu"
  executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
  rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log" | tail -n 1)
  per_cpu=$(awk -v n="${executions:-0}" -v c="$cpu" 'BEGIN { if (c > 0) printf "%d", n / c; else print "?" }')
  if [ "$status" -ne 0 ] || grep -q -E "^==[0-9]+==ERROR|runtime error:" "$log"; then
    echo "fuzz $name: ${executions:-?} executions, ${rate:-?}/s (${per_cpu}/s of processor time), FAILED"
    grep -a -E "^==[0-9]+==|SUMMARY|runtime error|^artifact_prefix|Test unit written" "$log" | head -n 20
    ls "$work"/crash-* "$work"/leak-* "$work"/timeout-* 2>/dev/null | head -n 3
    [ -n "$logs" ] && cp "$work"/crash-* "$work"/leak-* "$work"/timeout-* "$logs"/ 2>/dev/null || true
    failed=1
  else
    echo "fuzz $name: ${executions:-?} executions, ${rate:-?}/s (${per_cpu}/s of processor time), 0 crashes"
    if [ "$keep" -eq 1 ]; then
      "$program" -merge=1 "$corpus" "$work" > "$work.merge.log" 2>&1 || true
      rm -f "$work.merge.log"
    fi
    rm -rf "$work"
    if [ -z "$logs" ]; then rm -f "$log"; fi
  fi
done
exit $failed
