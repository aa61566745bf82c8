# Sourced by ./run and ./test after prepare.sh: what a Windows build needs, its third-party libraries, and Wine.

mapfile -t windows_packages <scripts/debian-packages-windows.txt
install_packages "${windows_packages[@]}"
scripts/windows-libraries.sh
unset DISPLAY  # what needs a screen gets one of its own

# Makes Wine's world, which takes a while the first time, and keeps its server for a minute after the last program, so
# that programs which come and go start fast.
keep_wine() {
  WINEPREFIX=$PWD/build/wine WINEDEBUG=-all wineserver -p60 >/dev/null 2>&1 </dev/null || true
  scripts/wine wineboot -u >/dev/null 2>&1 </dev/null
}

# Runs a command with Wine kept at hand, and ends what is left of it.
with_wine() {
  local status=0
  keep_wine
  "$@" || status=$?
  WINEPREFIX=$PWD/build/wine wineserver -k >/dev/null 2>&1 || true
  return $status
}
