#!/bin/sh
# check-windows-library.sh OBJDUMP BINARY [HEADER]: a binary for Windows knows its name, tells the system what it is made
# for if it is a program, and needs nothing but the system's libraries and ours; with HEADER, it exports the functions that the header declares, undecorated, and nothing else.
set -eu
table=$("$1" -p "$2")
foreign=$(echo "$table" | sed -n 's/^[[:space:]]*DLL Name: //p' | grep -viE \
  '^(advapi32|bcrypt|comctl32|comdlg32|gdi32|kernel32|msvcrt|mswsock|ole32|rpcrt4|shell32|user32|version|ws2_32|VantorixCoreFoundation)\.dll$' || true)
[ -z "$foreign" ] || { printf '%s needs\n%s\n' "$2" "$foreign"; exit 1; }
strings -e l "$2" | grep -qxF "$(basename "$2")" || { echo "$2 has no OriginalFilename"; exit 1; }
[ "${2%.exe}" = "$2" ] || grep -aq '<longPathAware' "$2" || { echo "$2 has no manifest"; exit 1; }
grep -aq RSDS "$2" || { echo "$2 has no build identifier"; exit 1; }
[ $# -gt 2 ] || exit 0
declared=$(sed -n 's/^PLUGINCORE_API [a-z0-9_]* *\([A-Za-z]*\)(.*/\1/p' "$3" | sort)
exported=$(echo "$table" | sed -n '/Ordinal\/Name Pointer/,/^$/s/^[[:space:]]*\[[ 0-9]*\] *\(+base\[[ 0-9]*\] *[0-9a-f]* *\)\{0,1\}\([^ ]*\)$/\2/p' | sort)
[ "$(echo "$declared" | wc -l)" = 28 ] || { echo "the header does not declare 28 functions"; exit 1; }
[ "$declared" = "$exported" ] || { printf 'declared:\n%s\nexported:\n%s\n' "$declared" "$exported"; exit 1; }
