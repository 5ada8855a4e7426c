#!/usr/bin/env bash
# Shared set-up for run.sh and test.sh: installs missing Debian packages, configures and builds.
set -euo pipefail

ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
BUILD_DIR=${BUILD_DIR:-$ROOT/build}

PACKAGES=(
  build-essential cmake pkg-config git
  qtbase5-dev qttools5-dev qttools5-dev-tools libqt5svg5-dev qt5-qmake
  libthrift-dev thrift-compiler libboost-dev
  libreoffice-writer libreoffice-dev
  xvfb xauth dbus fonts-dejavu-core poppler-utils file zip
  fonts-liberation2 fonts-crosextra-carlito fonts-crosextra-caladea
)

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

install_packages() {
  local missing=()
  for p in "${PACKAGES[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
  done
  if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    as_root apt-get update
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"
  fi
}

configure_and_build() {
  cmake -S "$ROOT" -B "$BUILD_DIR" -DCMAKE_BUILD_TYPE=RelWithDebInfo
  cmake --build "$BUILD_DIR" -j2
}
