#!/usr/bin/env bash
# document-of-many-fonts.sh [COUNT]: opening a document of COUNT fonts (default 300), all of which are in the font
# manager's store, against COUNT runs of fc-match; and the host's peak memory. In folders of its own.
set -euo pipefail
count=${1:-300}
build=$(cd "$(dirname -- "$0")/.." && pwd)/build/bench
work=$(mktemp -d)
export HOME=$work XDG_DATA_HOME=$work/data XDG_CONFIG_HOME=$work/config XDG_CACHE_HOME=$work/cache XDG_RUNTIME_DIR=$work/run
mkdir -m 700 "$work/run" "$work/fonts"
pellwick=$build/lib/vantorix/Pellwick
trap '"$pellwick" stop >/dev/null 2>&1 || true; rm -rf "$work"' EXIT

"$build/bin/make-test-fonts" "$work/fonts" "$count"
"$pellwick" add "$work/fonts"/*.ttf >/dev/null
fc-list >/dev/null  # fills fontconfig's cache

seconds() { local TIMEFORMAT=%R; { time "$@" >/dev/null 2>&1; } 2>&1; }
match_all() { local index; for ((index = 0; index < count; ++index)); do fc-match "Bench$(printf %04d "$index")"; done; }
open_document() { "$build/bin/plugincore-host" --json open "$work/fonts/document.pdf" --close; }

for run in 1 2 3; do
  opened=$(seconds open_document)
  matched=$(seconds match_all)
  awk -v o="$opened" -v m="$matched" -v n="$count" 'BEGIN {
    printf "open and close %d fonts: %.3f s; %d runs of fc-match: %.3f s; ratio %.3f\n", n, o, n, m, o / m }'
done
open_document | head -c 200; echo
