#!/bin/sh
# check-zip.sh WINE MAKE-ZIP CMAKE BUILD-FOLDER: tests that were taken along work far from where they were built, leave
# nothing but their logs there, and a failure is told.
set -eu
wine=$1 make_zip=$2 cmake=$3 build=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "$1"; exit 1; }

"$make_zip" "$cmake" "$build" "$work/tests.zip"
place="$work/Мои тесты (字) & more!"
mkdir "$place" "$work/temporary"
cd "$place"
"$cmake" -E tar xf "$work/tests.zip"
# The compiler's runtime names files of its own build; none of ours is known by where it stood here.
found=$(grep -rlaF "$build/" bin lib tests || true)
[ -z "$found" ] || fail "name the folder that they were built in: $found"
find . -type f | sort >"$work/before"
cd /
# Wine quotes for programs, not for its shell.
printf '@set "TEMP=%%TEMPORARY%%"\r\n@call "%%PLACE%%\\run-tests.cmd" %%*\r\n' >"$work/run.cmd"
# run LAST-LINE NAME...
run() {
  expected=$1
  shift
  LC_ALL=C.UTF-8 PLACE="Z:$place" TEMPORARY="Z:$work/temporary" "$wine" cmd /c "$work/run.cmd" "$@" | tr -d '\r' >"$work/output"
  [ "$(tail -n 1 "$work/output")" = "$expected" ] || {
    cat "$work/output"
    find "$place/logs" "$work/temporary" -name '*.log' -exec tail -n 50 {} +
    fail "not: $expected"
  }
}

run "2 passed, 0 failed, 0 skipped" platform-tests framework-tests
[ -s "$place/logs/platform-tests.log" ] || fail "no log"
rm -r "$place/logs"
(cd "$place" && find . -type f | sort) | diff "$work/before" - || fail "the tests changed their folder"

# Nothing can be written there, and a helper of the tests is missing.
touch "$place/logs"
rm "$place/tests/platform-test-child.exe"
run "0 passed, 2 failed, 0 skipped" platform-tests no-such-tests
[ -s "$work/temporary/plugincore-test-logs/platform-tests.log" ] || fail "no log among the temporary files"
