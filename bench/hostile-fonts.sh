#!/usr/bin/env bash
# hostile-fonts.sh [COUNT [SEED]]: adds COUNT hostile font files (default 1000) to the font manager while another client
# opens and closes documents: how long it takes to open one, how many of the files are taken, and what it costs the
# agent. In folders of its own.
set -euo pipefail
count=${1:-1000}
seed=${2:-1}
good=100
build=${BUILD:-$(cd "$(dirname -- "$0")/.." && pwd)/build/bench}
work=$(mktemp -d)
export HOME=$work XDG_DATA_HOME=$work/data XDG_CONFIG_HOME=$work/config XDG_CACHE_HOME=$work/cache XDG_RUNTIME_DIR=$work/run
mkdir -m 700 "$work/run" "$work/good" "$work/hostile"
pellwick=$build/lib/vantorix/Pellwick
trap '"$pellwick" stop >/dev/null 2>&1 || true; rm -rf "$work"' EXIT

"$build/bin/make-test-fonts" "$work/good" "$good"
"$build/bin/make-hostile-fonts" "$work/hostile" "$count" "$seed"
"$pellwick" add "$work/good"/*.ttf >/dev/null

echo "alone:"
"$build/bin/open-under-load" "$good" sleep 3
echo "while $count hostile files are added (seed $seed):"
before=$SECONDS
"$build/bin/open-under-load" "$good" "$pellwick" --json add "$work/hostile"
echo "adding took $((SECONDS - before)) s"
files=$("$pellwick" --json doctor | grep -o '"files":[0-9]*' | cut -d: -f2)
echo "files taken: $((files - good)), refused: $((count - files + good))"
