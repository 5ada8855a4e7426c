#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
install_packages
configure_and_build
cd "$BUILD_DIR"
ctest --output-on-failure -j2 --timeout 600 "$@"
