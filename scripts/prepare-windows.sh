# Sourced by ./run and ./test after prepare.sh: what a Windows build needs, its third-party libraries, and Wine.

mapfile -t windows_packages <scripts/debian-packages-windows.txt
install_packages "${windows_packages[@]}"
scripts/windows-libraries.sh

export WINEPREFIX=$PWD/build/wine
wine=$PWD/scripts/wine

# Runs a command with a display, with its programs' Wine kept at hand between them, and ends both afterwards.
with_wine() {
  local status=0 server
  server=$(command -v wineserver || echo /usr/lib/wine/wineserver)
  xvfb-run -a -s "-screen 0 1280x1024x24" sh -c '
    server=$1 wine=$2
    shift 2
    "$server" -p
    "$wine" wineboot -i >/dev/null 2>&1
    status=0
    "$@" || status=$?
    "$server" -k
    exit $status' with_wine "$server" "$wine" "$@" || status=$?
  return $status
}
