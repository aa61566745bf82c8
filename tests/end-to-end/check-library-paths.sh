#!/bin/sh
# check-library-paths.sh READELF FOLDER: no program and no library below the folder looks for libraries in the folder
# that it happens to be started in.
set -eu
readelf=$1
folder=$(cd "$2" && pwd)
unset LD_LIBRARY_PATH LD_PRELOAD
elsewhere=$(mktemp -d)
trap 'rm -rf "$elsewhere"' EXIT

# Those that the dynamic linker loads, object files apart.
find "$folder" -type f ! -name '*.o' ! -name '*.a' -exec sh -c '
  for file; do [ "$(head -c 4 "$file" | tail -c 3)" = ELF ] && echo "$file"; done; true' - {} + >"$elsewhere/.binaries"
[ -s "$elsewhere/.binaries" ] || { echo "no binaries below $folder"; exit 1; }

status=0
while read -r binary; do
  dynamic=$(LC_ALL=C "$readelf" -dW "$binary")
  paths=$(echo "$dynamic" | sed -n 's/.*(\(RUNPATH\|RPATH\)).*\[\(.*\)\]/\2/p')
  if [ -n "$paths" ] && echo "$paths" | tr : '\n' | grep -qv -e '^/' -e '^\$ORIGIN'; then
    echo "$binary looks for libraries in $paths"
    status=1
  fi
  # Libraries by the names that it needs, of which none can be loaded.
  for needed in $(echo "$dynamic" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p'); do
    : >"$elsewhere/$needed"
  done
done <"$elsewhere/.binaries"

cd "$elsewhere"
while read -r binary; do
  found=$(LC_ALL=C ldd "$binary" 2>&1) || found="cannot be loaded: $found"
  case $found in
    *"not a dynamic executable"*) ;;
    *"cannot be loaded"* | *"not found"* | *"$elsewhere"*) echo "$binary: $found"; status=1 ;;
  esac
done <.binaries
exit $status
