#!/usr/bin/env bash
# Takes the pictures of the windows for the README anew, from the running program on a virtual screen.
set -euo pipefail
ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
. "$ROOT/scripts/setup.sh"

install_packages "${PROGRAM_PACKAGES[@]}" "${TEST_PACKAGES[@]}"
configure_build ON
build_targets mirelo_pictures
export LIBGL_ALWAYS_SOFTWARE=1
xvfb-run --auto-servernum --server-args="-screen 0 1280x800x24" \
  "$BUILD_DIR/tests/journey/mirelo_pictures" "$ROOT/docs/images"
