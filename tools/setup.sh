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
