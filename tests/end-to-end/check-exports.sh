#!/bin/sh
# check-exports.sh NM LIBRARY HEADER: the library defines the functions that the header declares, or has in its table, and
# nothing else.
set -eu
declared=$(sed -n -e 's/^PLUGINCORE_API [a-z0-9_]* *\([A-Za-z]*\)(.*/\1/p' -e 's/^ *X(\([A-Za-z0-9]*\), (.*/\1/p' "$3" | sort)
exported=$("$1" -D --defined-only "$2" | awk '{sub("@.*", "", $NF); print $NF}' | sort)
[ "$declared" = "$exported" ] || { printf 'declared:\n%s\nexported:\n%s\n' "$declared" "$exported"; exit 1; }
