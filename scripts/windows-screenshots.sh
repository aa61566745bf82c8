#!/usr/bin/env bash
# Takes the pictures in docs/images/windows/ anew, from what the preset "windows" has built. Needs the packages xvfb and
# imagemagick, and fonts-wine for the symbols in title bars.
#   scripts/windows-screenshots.sh FOLDER LANGUAGE   # to another place, in another language than English
set -euo pipefail
scripts=$(dirname -- "$(readlink -f -- "$0")")
programs=$scripts/../build/windows/bin
target=${1:-$scripts/../docs/images/windows}
mkdir -p "$target"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# With preferences of their own, so that the pictures are always the same.
PLUGINCORE_PORTABLE=1 XDG_CONFIG_HOME="Z:$work" LANG=${2:-en} LC_ALL= "$scripts/wine-on-screen" "$programs/framework-dialog-pictures.exe" \
  "$programs/TarnwickPluginFramework.dll" "Z:$work" 2>/dev/null
for picture in "$work"/*.bmp; do
  convert "$picture" -alpha off -colors 128 -strip "$target/$(basename -- "$picture" .bmp).png"
done
