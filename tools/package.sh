#!/usr/bin/env bash
# The release package: one zip of the fat plug-in folder Vistarig/ with the Linux and the
# Windows plug-in, the folders the plug-in keeps its files in, and the licences of what
# the plug-ins carry inside them. Builds both (macOS is not built). Prints the zip's path.
#   bash tools/package.sh [OUTPUT.zip]        (default build/Vistarig-<version>.zip)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cache="${VISTARIG_CACHE:-$HOME/.cache/vistarig}"
version=$(sed -n 's/^project(Vistarig VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
out=${1:-$root/build/Vistarig-$version.zip}

bash "$root/tools/setup.sh" >/dev/null
linux_build="$root/build/xp"
cmake -S "$root" -B "$linux_build" -DCMAKE_BUILD_TYPE=Release -DVISTARIG_TESTS=OFF -DVISTARIG_BENCH=OFF >/dev/null
cmake --build "$linux_build" -j"$(nproc)" --target Vistarig >&2
windows_xpl=$(bash "$root/tools/build-windows.sh" Vistarig | tail -n 1)

stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
folder="$stage/Vistarig"
mkdir -p "$folder/lin_x64" "$folder/win_x64" "$folder/licences"
cp "$linux_build/Vistarig/lin_x64/Vistarig.xpl" "$folder/lin_x64/"
cp "$windows_xpl" "$folder/win_x64/"
# The folders the plug-in reads and writes beside its settings.
for sub in MyTargets AircraftCameraBackups CommunityAircraftCameras MyAirportCameras CommunityAirportCameras; do
  mkdir -p "$folder/$sub"
done
# What is linked into the plug-ins: Dear ImGui, FreeType, ftplib (all built from Debian's
# sources), and on Windows the MinGW-w64 run-time (winpthreads; libstdc++ and libgcc
# come under the GCC Runtime Library Exception).
cp "$cache/imgui-1.86+ds/LICENSE.txt" "$folder/licences/Dear ImGui.txt"
cp "$cache/freetype-2.12.1+dfsg/docs/FTL.TXT" "$folder/licences/FreeType.txt"
cp "$cache/ftplib-4.0-1/LICENSE" "$folder/licences/ftplib.txt"
cp /usr/share/doc/mingw-w64-x86-64-dev/copyright "$folder/licences/MinGW-w64 runtime.txt"
cp /usr/share/doc/gcc-mingw-w64-base/copyright "$folder/licences/GCC runtime.txt"
printf '%s\n' "Vistarig $version: copy this folder into X-Plane's Resources/plugins (see docs/USER_GUIDE.md)." \
  "lin_x64: Linux; win_x64: Windows. macOS is not built." "The licences of the libraries inside the plug-ins are in licences/." \
  >"$folder/README.txt"

mkdir -p "$(dirname "$out")"
rm -f "$out.tmp"
(cd "$stage" && python3 -m zipfile -c "$out.tmp" Vistarig)
mv "$out.tmp" "$out"
echo "$out"
