#!/usr/bin/env bash
# store-of-many-fonts.sh [SMALL [LARGE]]: how adding, listing, matching 500 names, and finding replacements for 500 names
# that are not there grow with the number of fonts in the font manager's store (default from 1000 to 10000). In folders
# of its own.
set -euo pipefail
sizes=("${1:-1000}" "${2:-10000}")
build=$(cd "$(dirname -- "$0")/.." && pwd)/build/bench
work=$(mktemp -d)
pellwick=$build/lib/vantorix/Pellwick
trap 'for each in "$work"/*/; do use_world "$each"; "$pellwick" stop >/dev/null 2>&1 || true; done; rm -rf "$work"' EXIT

use_world() {
  export HOME=$1 XDG_DATA_HOME=$1/data XDG_CONFIG_HOME=$1/config XDG_CACHE_HOME=$1/cache XDG_RUNTIME_DIR=$1/run
}
seconds() { local TIMEFORMAT=%R; { time "$@" >/dev/null 2>&1; } 2>&1; }
declare -A took

for size in "${sizes[@]}"; do
  world=$work/$size
  mkdir -p "$world/fonts" && mkdir -m 700 "$world/run"
  use_world "$world"
  "$build/bin/make-test-fonts" "$world/fonts" "$size"
  # The first 500 names of it.
  head -n 501 "$world/fonts/document.pdf" >"$world/document.pdf"
  "$pellwick" status >/dev/null 2>&1 || "$pellwick" list >/dev/null
  took[add$size]=$(seconds "$pellwick" add "$world/fonts")
  took[list$size]=$(seconds "$pellwick" --json list)
  "$build/bin/plugincore-host" --json open "$world/document.pdf" --close >/dev/null  # fills fontconfig's cache
  took[match$size]=$(seconds "$build/bin/plugincore-host" --json open "$world/document.pdf" --close)
  sed 's/-Regular/-Bold/' "$world/document.pdf" >"$world/missing.pdf"
  took[replace$size]=$(seconds "$build/bin/plugincore-host" --json open "$world/missing.pdf" --close) ||
    [[ $? == 3 ]]  # all of them are missing
  "$pellwick" stop >/dev/null
done

printf '%-10s %12s %12s %8s\n' '' "${sizes[0]} fonts" "${sizes[1]} fonts" growth
for step in add list match replace; do
  awk -v s="$step" -v a="${took[$step${sizes[0]}]}" -v b="${took[$step${sizes[1]}]}" 'BEGIN {
    printf "%-10s %10.3f s %10.3f s %8.2f\n", s, a, b, b / a }'
done
