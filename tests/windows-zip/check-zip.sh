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
printf '@set "TEMP=%%TEMPORARY%%"\r\n@call "%%PLACE%%\\run-tests.cmd" %%*\r\n@exit /b %%ERRORLEVEL%%\r\n' >"$work/run.cmd"
# run STATUS LAST-LINE NAME...
run() {
  status=$1 expected=$2
  shift 2
  found=0
  LC_ALL=C.UTF-8 PLACE="Z:$place" TEMPORARY="Z:$work/temporary" \
    "$wine" cmd /c "$work/run.cmd" "$@" >"$work/output" || found=$?
  [ "$found $(tail -n 1 "$work/output" | tr -d '\r')" = "$status $expected" ] || {
    cat "$work/output"
    find "$place/logs" "$work/temporary" -name '*.log' -exec tail -n 50 {} +
    fail "status $found, not $status $expected"
  }
}

run 0 "2 passed, 0 failed, 0 skipped" platform-tests framework-tests
[ -s "$place/logs/platform-tests.log" ] || fail "no log"
rm -r "$place/logs"
(cd "$place" && find . -type f | sort) | diff "$work/before" - || fail "the tests changed their folder"

# Nothing can be written there, and what a test needs is missing.
touch "$place/logs"
run 1 "1 passed, 1 failed, 0 skipped" framework-tests no-such-tests
[ -s "$work/temporary/plugincore-test-logs/framework-tests.log" ] || fail "no log among the temporary files"
rm "$place/tests/VantorixCoreFoundation.dll"
run 1 "0 passed, 1 failed, 0 skipped" framework-tests
