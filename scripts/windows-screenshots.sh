#!/usr/bin/env bash
# Takes the pictures in docs/images/windows/ anew, from what the preset "windows" has built. Needs the packages xvfb and
# imagemagick, and fonts-wine for the symbols in title bars.
#   scripts/windows-screenshots.sh FOLDER LANGUAGE   # to another place, in another language than English
set -euo pipefail
scripts=$(dirname -- "$(readlink -f -- "$0")")
command -v import >/dev/null || { echo "there is no ImageMagick; install the package imagemagick" >&2; exit 1; }
target=${1:-$scripts/../docs/images/windows}
mkdir -p "$target"
work=$(mktemp -d)  # a path without blanks, which Wine's "start" does not take
trap 'rm -rf "$work"' EXIT
mkdir "$work/pictures"
ln -s "$scripts/dialog-picture" "$work/picture"
# Wine does not wait for a program of the system.
printf '%s\r\n' "@start /unix $work/picture %1" ":wait" "@if not exist \"Z:${work//\//\\}\\pictures\\%1.png\" goto wait" \
  >"$work/picture.cmd"
DIALOG_PICTURES=$work/pictures DIALOG_PICTURE="Z:${work//\//\\}\\picture.cmd" DIALOG_LANGUAGE=${2:-en} \
  PLUGINCORE_PORTABLE=1 \
  "$scripts/wine-on-screen" "$scripts/../build/windows/tests/framework-window-tests.exe" >/dev/null 2>&1
mv "$work"/pictures/*.png "$target"
