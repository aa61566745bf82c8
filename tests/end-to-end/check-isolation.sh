#!/bin/sh
# check-isolation.sh ISOLATED: what runs a test hands on its arguments and its status, and leaves nothing running.
set -eu
fail() { echo "$1"; exit 1; }
for PLUGINCORE_NO_ISOLATION in 1 ''; do
  export PLUGINCORE_NO_ISOLATION
  [ "$("$1" printf '%s|' 'a b' '"' '')" = 'a b|"||' ] || fail "other arguments"
  status=0
  "$1" sh -c 'exit 7' || status=$?
  [ $status = 7 ] || fail "status $status"
  "$1" sh -c 'kill -SEGV $$' 2>/dev/null && fail "a crash is a success"
done
unset PLUGINCORE_NO_ISOLATION
"$1" sh -c '[ $PPID = 1 ]' || { echo "no processes of its own here"; exit 77; }
seconds=100.$$  # by which it is found
"$1" sh -c "setsid sleep $seconds >/dev/null 2>&1 &"
for process in /proc/[0-9]*; do
  case $({ tr '\0' ' ' <"$process/cmdline"; } 2>/dev/null) in
    "sleep $seconds "*) fail "a process was left" ;;
  esac
done
