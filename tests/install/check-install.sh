#!/usr/bin/env bash
# check-install.sh SOURCE BUILD: what is installed serves other projects: a host in C and one in C++, and another font
# manager, which the core then works with.
set -euo pipefail
source=$1
build=$2
folder=$(mktemp -d "${TMPDIR:-/tmp}/plugincore install XXXXXX")
trap 'rm -rf "$folder"' EXIT
prefix="$folder/prefix"

cmake --install "$build" --prefix "$prefix" >/dev/null
cmake -S "$source/tests/install/consumer" -B "$folder/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
  -DEXAMPLES="$prefix/share/doc/PluginCore/examples" >"$folder/log" 2>&1 || { cat "$folder/log"; exit 1; }
cmake --build "$folder/build" >"$folder/log" 2>&1 || { cat "$folder/log"; exit 1; }
"$folder/build/AfterConsumer" "$prefix/lib/libPluginCore.so"
PKG_CONFIG_PATH="$prefix/lib/pkgconfig" pkg-config --exists --print-errors "plugincore >= 8"

# The core with the other font manager: a font that it has, and one that it has not.
mkdir -p "$folder/data/fonts" "$folder/fonts"
touch "$folder/fonts/Sample-Bold.ttf"
printf '%%PDF-1.4\n<< /FontName /ABCDEF+Sample-Bold /Flags 4 >>\n<< /FontName /ABCDEF+Missing /Flags 4 >>\n' \
  >"$folder/document.pdf"
export XDG_DATA_HOME="$folder/data" XDG_CONFIG_HOME="$folder/config" XDG_CACHE_HOME="$folder/cache"
export XDG_DATA_DIRS="$folder/all users" XDG_RUNTIME_DIR="$folder" PLUGINCORE_PRESENTER=silent
export FONT_FOLDER="$folder/fonts" LD_LIBRARY_PATH="$folder/build/other-font-manager"
"$folder/build/thin-host/IllustratorHost" "$folder/document.pdf" | tee "$folder/answer"
grep -q '^1 fonts activated$' "$folder/answer"
grep -q '^missing: .*"Missing"' "$folder/answer"
[ -z "$(ls "$folder/data/fonts")" ] || { echo "the fonts are still active"; exit 1; }
