#!/usr/bin/env bash
# Takes the pictures in docs/images/windows/ anew, from what the preset "windows" has built. Needs the packages xvfb and
# imagemagick, and fonts-wine for the symbols in title bars.
#   scripts/windows-screenshots.sh FOLDER LANGUAGE   # to another place, in another language than English
set -euo pipefail
scripts=$(dirname -- "$(readlink -f -- "$0")")
target=${1:-$scripts/../docs/images/windows}
mkdir -p "$target"
target=$(cd "$target" && pwd)
DIALOG_PICTURES=$target DIALOG_PICTURE="start /wait /unix \"$scripts/dialog-picture\"" DIALOG_LANGUAGE=${2:-en} \
  PLUGINCORE_PORTABLE=1 \
  "$scripts/wine-on-screen" "$scripts/../build/windows/tests/framework-window-tests.exe" >/dev/null 2>&1
