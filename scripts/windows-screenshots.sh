#!/usr/bin/env bash
# Takes the pictures in docs/images/windows/ anew, from what the preset "windows" has built. Needs the packages xvfb and
# imagemagick, and fonts-wine for the symbols in title bars.
#   scripts/windows-screenshots.sh FOLDER LANGUAGE   # to another place, in another language than English
set -euo pipefail
scripts=$(dirname -- "$(readlink -f -- "$0")")
programs=$scripts/../build/windows/tests
target=${1:-$scripts/../docs/images/windows}
mkdir -p "$target"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
DIALOG_PICTURES="Z:$work" DIALOG_LANGUAGE=${2:-en} PLUGINCORE_PORTABLE=1 \
  "$scripts/wine-on-screen" "$programs/framework-window-tests.exe" >/dev/null 2>&1
for picture in "$work"/*.bmp; do
  convert "$picture" -alpha off -colors 128 -strip "$target/$(basename -- "$picture" .bmp).png"
done
