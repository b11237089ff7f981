#!/usr/bin/env bash
# Installs what the build needs on Debian 12, when it is missing.
set -euo pipefail
packages=(build-essential cmake ninja-build ccache qtbase5-dev qtscript5-dev libqt5networkauth5-dev
          libgtest-dev libbenchmark-dev xvfb xauth clang libclang-rt-14-dev)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  SUDO=""
  [ "$(id -u)" -eq 0 ] || SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${missing[@]}"
fi
