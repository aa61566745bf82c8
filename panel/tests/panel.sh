#!/bin/sh
# panel.sh BUILD: builds the app into BUILD and runs the tests of the client and of the app. 77: skipped.
set -eu
build=$(cd "$1" && pwd)
cd "$(dirname "$0")/.."
skip() { echo "skipped: $1"; exit 77; }
"$build/bin/plugincore-host" panel /nowhere 2>&1 | grep -q 'built without' && skip "the host was built without cpp-httplib"
command -v npm >/dev/null || skip "there is no npm; install node 18 or newer"
[ "$(node -p 'Number(process.versions.node.split(".")[0])')" -ge 18 ] || skip "node is older than 18"
[ -d node_modules ] || npm ci --no-audit --no-fund >/dev/null 2>&1 || skip "npm ci fails; is there a connection to the registry?"
[ -x "${CHROMIUM:-/usr/bin/chromium}" ] || skip "there is no chromium; install the package"
node build.mjs --out "$build/share/plugincore/panel"
npx tsc
PANEL_BUILD="$build" exec node --test tests/client.test.mjs tests/panel.test.mjs
