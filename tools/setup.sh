#!/usr/bin/env bash
# Installs the Debian packages the project builds, runs and tests with. Idempotent:
# nothing is fetched when everything is already installed.
set -euo pipefail
packages=(
  build-essential cmake pkg-config clang libclang-rt-14-dev
  libgtest-dev libbenchmark-dev
  libimgui-dev libstb-dev libfreetype-dev libftp-dev
  libosmesa6-dev libgl-dev libpng-dev
  fonts-roboto python3 python3-pyftpdlib binutils
)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "setup: installing ${missing[*]}"
  sudo_cmd=""
  [ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
  $sudo_cmd apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq "${missing[@]}" >/dev/null
fi
echo "setup: all packages present"

# Dear ImGui 1.86 from Debian's source package: the prebuilt libimgui-dev lacks the
# item hooks that the panel test driver needs, so CMake compiles these sources itself
# (IMGUI_SOURCE_DIR). The deb-src entry is signed by the Debian archive keyring.
imgui_cache="${VISTARIG_CACHE:-$HOME/.cache/vistarig}"
imgui_dir="$imgui_cache/imgui-1.86+ds"
if [ ! -f "$imgui_dir/imgui.cpp" ]; then
  sudo_cmd=""
  [ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
  if ! grep -rqs '^Types: deb-src' /etc/apt/sources.list.d/ && ! grep -qs '^deb-src' /etc/apt/sources.list; then
    echo "setup: adding a deb-src entry for bookworm"
    printf '%s\n' 'Types: deb-src' 'URIs: http://deb.debian.org/debian' 'Suites: bookworm' 'Components: main' \
      'Signed-By: /usr/share/keyrings/debian-archive-keyring.gpg' |
      $sudo_cmd tee /etc/apt/sources.list.d/vistarig-src.sources >/dev/null
    $sudo_cmd apt-get update -qq
  fi
  dpkg-query -W -f='${Status}' dpkg-dev 2>/dev/null | grep -q "install ok installed" ||
    DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq dpkg-dev >/dev/null
  mkdir -p "$imgui_cache"
  (cd "$imgui_cache" && apt-get source -qq imgui=1.86+ds-1 >/dev/null)
  [ -f "$imgui_dir/imgui.cpp" ] || { echo "setup: could not fetch the ImGui sources" >&2; exit 1; }
fi
echo "setup: ImGui sources in $imgui_dir"

# ftplib 4.0 from Debian's source package, for the same reason: Debian's static libftp.a
# isn't position-independent, so CMake compiles ftplib.c into the plug-in (FTPLIB_SOURCE_DIR).
ftplib_dir="$imgui_cache/ftplib-4.0-1"
if [ ! -f "$ftplib_dir/src/ftplib.c" ]; then
  (cd "$imgui_cache" && apt-get source -qq ftplib=4.0-1-4 >/dev/null)
  [ -f "$ftplib_dir/src/ftplib.c" ] || { echo "setup: could not fetch the ftplib sources" >&2; exit 1; }
fi
echo "setup: ftplib sources in $ftplib_dir/src"
