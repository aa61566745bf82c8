#!/usr/bin/env bash
# Takes the pictures in docs/images/linux/ anew, from what the preset "dev" has built. Needs the packages xvfb, xdotool and
# imagemagick.
#   scripts/linux-screenshots.sh FOLDER LANGUAGE   # to another place, in another language than English
set -euo pipefail
scripts=$(dirname -- "$(readlink -f -- "$0")")
target=${1:-$scripts/../docs/images/linux}
mkdir -p "$target"
target=$(cd "$target" && pwd)
cd /  # a folder chooser shows where it was started
DIALOG_PICTURES=$target DIALOG_PICTURE="'$scripts/dialog-picture'" DIALOG_LANGUAGE=${2:-en} \
  "$scripts/on-screen" "$scripts/../build/dev/tests/framework-window-tests" --gtest_filter='*AreTaken*'
