#!/usr/bin/env bash
# Builds the plug-in, the simulator host and the runner, then runs the embedded default.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build="$root/build/release"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVISTARIG_TESTS=OFF -DVISTARIG_BENCH=OFF >/dev/null
cmake --build "$build" -j"$(nproc)" --target vistarig-sim Vistarig
exec "$build/vistarig-sim" "$@"
