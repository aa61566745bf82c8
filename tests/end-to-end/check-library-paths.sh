#!/bin/sh
# check-library-paths.sh READELF FOLDER: no program and no library below the folder looks for libraries in the folder
# that it happens to be started in.
set -eu
find "$2" -type f ! -name '*.o' ! -name '*.a' -exec sh -c '
  for file; do [ "$(head -c 4 "$file" | tail -c 3)" = ELF ] && echo "$file"; done; true' - {} + | {
  status=1  # there are some
  while read -r binary; do
    [ $status = 2 ] || status=0
    paths=$(LC_ALL=C "$1" -dW "$binary" | sed -n 's/.*(\(RUNPATH\|RPATH\)).*\[\(.*\)\]/\2/p')
    if [ -n "$paths" ] && echo "$paths" | tr : '\n' | grep -qv -e '^/' -e '^\$ORIGIN'; then
      echo "$binary looks for libraries in $paths"
      status=2
    fi
  done
  exit $status
}
