#!/usr/bin/env bash
# install-deps.sh [--list]
# Installs what building and testing need on Debian 12. Where nothing is missing it needs neither the network nor
# root.
set -eu
packages=(
  # tools
  ca-certificates ccache cmake g++ git ninja-build pkg-config librsvg2-bin
  # toolkit
  libegl-dev libepoxy-dev libfontconfig-dev libfreetype-dev libgl-dev libglu1-mesa-dev libjpeg62-turbo-dev
  libpng-dev libtiff-dev libx11-dev zlib1g-dev
  # its optional modules
  libassimp-dev libembree-dev libstb-dev libwebp-dev
  # inspector
  libqt6opengl6-dev libtbb-dev qt6-base-dev qt6-qpa-plugins
  # tests and running: GoogleTest, a display, software OpenGL, a font
  fonts-dejavu-core libegl1 libgl1-mesa-dri libglx-mesa0 libgtest-dev xauth xvfb
)
if [ "${1-}" = --list ]; then
  printf '%s\n' "${packages[@]}"
  exit 0
fi

missing=()
for package in "${packages[@]}"; do
  state=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$state" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

echo "install-deps.sh: installing ${missing[*]}"
as_root=()
if [ "$(id -u)" != 0 ]; then
  command -v sudo >/dev/null || { echo "install-deps.sh: neither root nor sudo" >&2; exit 1; }
  as_root=(sudo)
fi
apt() {
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=600 "$@"
}
apt update
apt install --no-install-recommends "${missing[@]}"
