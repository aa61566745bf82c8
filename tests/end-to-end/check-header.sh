#!/bin/sh
# check-header.sh CC CXX STANDARD HEADER FOLDER...: the header compiles alone.
set -eu
cc=$1 cxx=$2 standard=$3 header=$4
shift 4
includes=
for folder; do includes="$includes -I$folder"; done
case $standard in c++*) language=c++ compiler=$cxx ;; *) language=c compiler=$cc ;; esac
# shellcheck disable=SC2086
printf '#include <%s>\n' "$header" |
  "$compiler" -x $language -std="$standard" -pedantic -Wall -Wextra -Werror $includes -fsyntax-only -
