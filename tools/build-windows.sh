#!/usr/bin/env bash
# Cross-builds the Windows plug-in Vistarig/win_x64/Vistarig.xpl with Debian's MinGW-w64,
# from the same sources as the Linux one, and the Windows simulator stand-in that Wine
# runs it in. Installs what it needs (apt-get only), builds FreeType static for Windows
# from Debian's source package once (kept in ~/.cache/vistarig), and prints the path of
# the Windows .xpl as its last line.
#
#   bash tools/build-windows.sh            # the plug-in, XPLM_64.dll, the runner, the doubles
#   bash tools/build-windows.sh Vistarig   # only the given targets
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build="${VISTARIG_WINDOWS_BUILD:-$root/build/windows}"
cache="${VISTARIG_CACHE:-$HOME/.cache/vistarig}"
triple=x86_64-w64-mingw32

sudo_cmd=""
[ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
packages=(g++-mingw-w64-x86-64 binutils-mingw-w64-x86-64 wine64 cmake dpkg-dev)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "build-windows: installing ${missing[*]}" >&2
  $sudo_cmd apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

# The ImGui and ftplib sources are the Linux build's (tools/setup.sh fetches them).
bash "$root/tools/setup.sh" >/dev/null

# FreeType from Debian's source package of the installed version, static, without the
# optional libraries (the panels' one font is a TrueType file).
ft_version=2.12.1+dfsg-5+deb12u4
ft_source="$cache/freetype-2.12.1+dfsg"
ft_prefix="$cache/win64/freetype-$ft_version"
if [ ! -f "$ft_prefix/lib/libfreetype.a" ]; then
  if [ ! -f "$ft_source/CMakeLists.txt" ]; then
    (cd "$cache" && apt-get source -qq "freetype=$ft_version" >/dev/null 2>&1)
    [ -f "$ft_source/CMakeLists.txt" ] || { echo "build-windows: could not fetch the FreeType sources" >&2; exit 1; }
  fi
  echo "build-windows: building FreeType $ft_version for Windows" >&2
  ft_build="$cache/win64/freetype-build"
  rm -rf "$ft_build"
  cmake -S "$ft_source" -B "$ft_build" -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64-x86_64.cmake" \
    -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=OFF -DCMAKE_INSTALL_PREFIX="$ft_prefix" \
    -DFT_DISABLE_ZLIB=TRUE -DFT_DISABLE_BZIP2=TRUE -DFT_DISABLE_PNG=TRUE -DFT_DISABLE_HARFBUZZ=TRUE \
    -DFT_DISABLE_BROTLI=TRUE >/dev/null
  cmake --build "$ft_build" -j"$(nproc)" --target install >/dev/null
  rm -rf "$ft_build"
fi

cmake -S "$root" -B "$build" -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64-x86_64.cmake" \
  -DCMAKE_BUILD_TYPE=Release -DVISTARIG_TESTS=OFF -DVISTARIG_BENCH=OFF \
  -DVISTARIG_WINDOWS_FREETYPE_DIR="$ft_prefix" >/dev/null
if [ $# -gt 0 ]; then
  cmake --build "$build" -j"$(nproc)" --target "$@" >&2
else
  cmake --build "$build" -j"$(nproc)" >&2
fi
echo "$build/Vistarig/win_x64/Vistarig.xpl"
