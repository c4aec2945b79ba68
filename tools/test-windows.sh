#!/usr/bin/env bash
# The Windows checks: cross-builds the Windows plug-in and its stand-in
# (tools/build-windows.sh), checks what the .xpl exports and imports, and runs under
# Wine (headless: a fresh prefix, the null graphics driver) the tests of the Windows
# code paths, the default flight, whose per-frame CSV must match the Linux runner's, and
# the TrackIR client found through the registry.
#   bash tools/test-windows.sh [LINUX_RUNNER]   (default build/plain/vistarig-sim)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
linux_runner=${1:-$root/build/plain/vistarig-sim}
xpl=$(bash "$root/tools/build-windows.sh" | tail -n 1)
bin=$(dirname "$(dirname "$(dirname "$xpl")")")/bin
objdump=x86_64-w64-mingw32-objdump
passed=0

echo "== Windows plug-in exports and imports"
exports=$($objdump -p "$xpl" | sed -n '/\[Ordinal\/Name Pointer\] Table/,/^$/p' | sed -n 's/^\s*\[ *[0-9]*\] //p' | sort | tr '\n' ' ')
echo "exports: $exports"
[ "$exports" = "XPluginDisable XPluginEnable XPluginReceiveMessage XPluginStart XPluginStop " ] ||
  { echo "test-windows: the .xpl must export exactly the five XPlugin* functions" >&2; exit 1; }
imports=$($objdump -p "$xpl" | sed -n 's/^\s*DLL Name: //p' | tr '\n' ' ')
echo "imports: $imports"
for dll in $imports; do
  case "${dll^^}" in
    XPLM_64.DLL | OPENGL32.DLL | KERNEL32.DLL | USER32.DLL | GDI32.DLL | ADVAPI32.DLL | MSVCRT.DLL | WS2_32.DLL) ;;
    *) echo "test-windows: the .xpl needs $dll, which is neither X-Plane's nor Windows' own" >&2; exit 1 ;;
  esac
done
passed=$((passed + 2))

prefix=$(mktemp -d "${TMPDIR:-/tmp}/vistarig-wine.XXXXXX")
work=$(mktemp -d "${TMPDIR:-/tmp}/vistarig-windows.XXXXXX")
export WINEPREFIX="$prefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
wine=/usr/lib/wine/wine64
cleanup() {
  /usr/lib/wine/wineserver -k >/dev/null 2>&1 || true
  rm -rf "$prefix" "$work"
}
trap cleanup EXIT
# No display in CI: Wine's null graphics driver still gives windows and a clipboard.
timeout 300 "$wine" reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f >/dev/null 2>&1
/usr/lib/wine/wineserver -w

echo "== Windows code paths under Wine"
timeout 300 "$wine" "$bin/vistarig_windows_tests.exe" | tee "$work/tests.log" | grep -E '^\[ +(FAILED|PASSED) ' || true
count=$(sed -n 's/^\[  PASSED  \] \([0-9]*\) tests\?\..*/\1/p' "$work/tests.log")
grep -q '^\[  FAILED  \]' "$work/tests.log" && { cat "$work/tests.log" >&2; exit 1; }
passed=$((passed + ${count:-0}))

echo "== the default flight under Wine against Linux"
timeout 300 "$wine" "$bin/vistarig-sim.exe" --xpl "$xpl" --work "$work/windows" >"$work/windows.out"
"$linux_runner" --no-draw --work "$work/linux" >"$work/linux.out"
python3 - "$work/linux/vistarig-frames.csv" "$work/windows/vistarig-frames.csv" <<'PY'
import csv, sys
linux = list(csv.DictReader(open(sys.argv[1])))
windows = list(csv.DictReader(open(sys.argv[2])))
if len(linux) != 300 or len(windows) != len(linux) or list(linux[0]) != list(windows[0]):
    sys.exit("test-windows: %d Linux rows, %d Windows rows, or other columns" % (len(linux), len(windows)))
worst, where = 0.0, ""
for a, b in zip(linux, windows):
    for column in a:
        gap = abs(float(a[column]) - float(b[column]))
        if gap > worst:
            worst, where = gap, "%s in frame %s" % (column, a["frame"])
print("default flight: 300 frames, largest difference %.3g%s" % (worst, " (" + where + ")" if where else ""))
if worst > 1e-4:
    sys.exit("test-windows: the Windows run leaves the Linux one by more than 1e-4")
PY
passed=$((passed + 1))

echo "== TrackIR through the registry under Wine"
timeout 300 "$wine" "$bin/vistarig-sim.exe" --xpl "$xpl" --work "$work/trackir" "$root/tests/windows/trackir_registry.scn"
passed=$((passed + 1))
echo "windows: $passed passed, 0 failed"
