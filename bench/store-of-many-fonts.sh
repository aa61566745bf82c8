#!/usr/bin/env bash
# store-of-many-fonts.sh [COUNT…]: what grows with the number of fonts in the font manager's store (default 1000 10000):
# adding and listing them, a start of the agent, opening a document of 6 names, of 500, of 500 that are not there, and
# of those again after a change of the library; and the agent's memory. Host start included. In folders of its own.
set -euo pipefail
(($#)) || set -- 1000 10000
build=$(cd "$(dirname -- "$0")/.." && pwd)/build/bench
work=$(mktemp -d)
pellwick=$build/lib/vantorix/Pellwick
trap 'for each in "$work"/*/; do use_world "$each"; "$pellwick" stop >/dev/null 2>&1 || true; done; rm -rf "$work"' EXIT

use_world() {
  export HOME=$1 XDG_DATA_HOME=$1/data XDG_CONFIG_HOME=$1/config XDG_CACHE_HOME=$1/cache XDG_RUNTIME_DIR=$1/run
}
seconds() { local TIMEFORMAT=%R; { time "$@" >/dev/null 2>&1; } 2>&1; }
open_seconds() { # DOCUMENT; fonts that are missing are no failure
  seconds "$build/bin/plugincore-host" --json open "$1" --close || [[ $? == 3 ]]
}
agent_memory() { # MB
  local process
  process=$("$pellwick" --json status | grep -oP '"process":\K[0-9]+')
  awk '/^VmRSS/ { printf "%d", $2 / 1024 }' "/proc/$process/status"
}
declare -A took

for size; do
  world=$work/$size
  mkdir -p "$world/fonts" && mkdir -m 700 "$world/run"
  use_world "$world"
  "$build/bin/make-test-fonts" "$world/fonts" "$size"
  head -n 7 "$world/fonts/document.pdf" >"$world/six.pdf" # its heading and six names
  head -n 501 "$world/fonts/document.pdf" >"$world/many.pdf"
  sed 's/-Regular/-Bold/' "$world/many.pdf" >"$world/missing.pdf"
  "$pellwick" list >/dev/null
  took[add$size]=$(seconds "$pellwick" add "$world/fonts")
  "$pellwick" stop >/dev/null
  took[start$size]=$(seconds "$pellwick" list --family nothing)
  took[list$size]=$(seconds "$pellwick" list)
  open_seconds "$world/many.pdf" >/dev/null # fills fontconfig's cache
  took[open6$size]=$(open_seconds "$world/six.pdf")
  took[open500$size]=$(open_seconds "$world/many.pdf")
  open_seconds "$world/missing.pdf" >/dev/null
  took[missing$size]=$(open_seconds "$world/missing.pdf")
  "$pellwick" remove --yes "$("$pellwick" --json list | grep -oP '"PostScriptName":"\K[^"]+' | tail -n 1)" >/dev/null
  took[changed$size]=$(open_seconds "$world/missing.pdf")
  took[memory$size]=$(agent_memory)
  "$pellwick" stop >/dev/null
done

printf '%-8s' '' && printf ' %12s' "${@/%/ fonts}" growth && printf '\n'
for step in add start list open6 open500 missing changed memory; do
  printf '%-8s' "$step"
  for size; do printf ' %12s' "${took[$step$size]}"; done
  awk -v first="${took[$step$1]}" -v last="${took[$step${*: -1}]}" 'BEGIN { printf " %12.2f\n", last / first }'
done
