# Sourced by ./run and ./test after prepare.sh: what a Windows build needs, its third-party libraries, and Wine.

mapfile -t windows_packages <scripts/debian-packages-windows.txt
install_packages "${windows_packages[@]}"
scripts/windows-libraries.sh

# Runs a command whose programs come and go with Wine's own server kept running in between, and ends that afterwards.
with_wine() {
  local status=0
  unset DISPLAY  # what needs a screen gets one of its own
  WINEPREFIX=$PWD/build/wine WINEDEBUG=-all wineserver -p
  scripts/wine wineboot -u >/dev/null 2>&1  # the first time it makes its world, which takes a while
  "$@" || status=$?
  WINEPREFIX=$PWD/build/wine wineserver -k || true
  return $status
}
