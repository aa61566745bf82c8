#!/bin/sh
# check-format.sh CLANG-FORMAT: every source file of the repository is formatted.
set -eu
if git rev-parse --is-inside-work-tree >/dev/null 2>&1; then
  git ls-files -z -- '*.h' '*.c' '*.cpp'
else
  find . -path ./build -prune -o \( -name '*.h' -o -name '*.c' -o -name '*.cpp' \) -print0
fi | xargs -0 "$1" --dry-run -Werror
