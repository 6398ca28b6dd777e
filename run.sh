#!/usr/bin/env bash
# run.sh [--build] [scene]: builds and starts the inspector on a scene (default: the first of scenes/).
# Without a display it writes a picture of the window instead. --build only builds.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
"$here/tools/install-deps.sh"
"$here/tools/build.sh"
[ "${1-}" != --build ] || exit 0

scene=${1-}
if [ -z "$scene" ]; then
  scene=$(find "$here/scenes" -maxdepth 1 -name '*.kv' 2>/dev/null | sort | head -n 1)
  [ -n "$scene" ] || { echo "run.sh: no scene in $here/scenes" >&2; exit 1; }
fi
[ -e "$scene" ] || { echo "run.sh: no such file: $scene" >&2; exit 1; }
if [ -n "${DISPLAY-}${WAYLAND_DISPLAY-}" ]; then
  exec "$here/build/release/bin/vantle" "$scene"
fi
picture=$here/build/$(basename "${scene%.*}").png
rm -f "$picture"
"$here/build/release/bin/vantle" --snapshot "$picture" "$scene"
[ -s "$picture" ] || { echo "run.sh: no picture was written" >&2; exit 1; }
echo "No display here; the window's picture is $picture"
