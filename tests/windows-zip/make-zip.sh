#!/bin/sh
# make-zip.sh CMAKE BUILD-FOLDER ZIP: packs what a build for Windows has, with its tests.
set -eu
cmake=$1 build=$2 zip=$3
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
"$cmake" --install "$build" --prefix "$prefix" >/dev/null
"$cmake" --install "$build" --prefix "$prefix" --component tests >/dev/null
cd "$prefix"
"$cmake" -E tar cf "$zip" --format=zip bin lib/vantorix symbols tests run-tests.cmd
