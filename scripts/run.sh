#!/usr/bin/env bash
# Installs what is missing, builds, and starts the host with the add-on.
# With a display the host starts as a user would start it. Without one it runs under xvfb-run
# with the sample documents the build made, waits for their page counts and saves a screenshot.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
install_packages
configure_and_build

if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
  exec "$BUILD_DIR/bin/vapphost" "$@"
fi
samples=()
for f in A.docx B.doc C.zyl; do
  [ -f "$BUILD_DIR/samples/$f" ] && samples+=("$BUILD_DIR/samples/$f")
done
[ ${#samples[@]} -gt 0 ] || echo "No sample documents (the office was missing at build time): the table stays empty"
shot="$BUILD_DIR/vapphost-screenshot.png"
xvfb-run -a -s "-screen 0 1280x900x24" "$BUILD_DIR/bin/vapphost" --screenshot "$shot" --quit-after 15000 \
  "$@" "${samples[@]}"
echo "No display: the host ran under Xvfb with ${#samples[@]} sample documents; screenshot saved to $shot"
