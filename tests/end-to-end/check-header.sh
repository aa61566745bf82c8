#!/bin/sh
# check-header.sh CC CXX STANDARD HEADER FOLDER FOLDER: the header compiles alone.
set -eu
case $3 in c++*) language=c++ compiler=$2 ;; *) language=c compiler=$1 ;; esac
printf '#include <%s>\n' "$4" |
  "$compiler" -x $language -std="$3" -pedantic -Wall -Wextra -Werror -I"$5" -I"$6" -fsyntax-only -
