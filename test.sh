#!/usr/bin/env bash
# test.sh [ctest argument...]: installs what is missing, builds, and runs every test.
set -eu
cd "$(dirname "$0")"
tools/install-deps.sh
tools/build.sh
unset WAYLAND_DISPLAY
exec tools/with-display.sh ctest --test-dir build/release --output-on-failure --no-tests=error -j2 "$@"
