# Sourced by ./run and ./test: what a fresh Debian 12 machine lacks, and the build.

# Installs the packages of the list that are not there yet.
install_packages() {
  local missing=() package
  for package in "$@"; do
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  local as_root=()
  if [ "$(id -u)" != 0 ]; then
    command -v sudo >/dev/null || {
      echo "These Debian packages are missing; install them as root: ${missing[*]}" >&2
      return 1
    }
    as_root=(sudo)
  fi
  echo "Installing: ${missing[*]}" >&2
  "${as_root[@]}" apt-get update -qq
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" \
    >/dev/null
}

# Configures the preset if that was not done, and builds it.
build_preset() {
  local preset=$1
  [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" -- --quiet >&2
}

mapfile -t build_packages <scripts/debian-packages.txt
install_packages "${build_packages[@]}"
