# Sourced by ./run and ./test: what a fresh Debian 12 machine lacks, and the build.

# Runs a command as root, or says what would have to be done.
as_root() {
  if [ "$(id -u)" = 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    echo "This must be run as root first: $*" >&2
    return 1
  fi
}

apt_install() { as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "$@" >/dev/null; }

# Installs the packages that are not there yet.
install_packages() {
  local missing=() package
  for package in "$@"; do
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  echo "Installing: ${missing[*]}" >&2
  # The package lists may be there already, and a machine's other sources may be broken.
  apt_install "${missing[@]}" 2>/dev/null || { as_root apt-get update -qq || true; apt_install "${missing[@]}"; }
}

# Configures the preset if that was not done, and builds it, or the targets that are named.
build_preset() {
  local preset=$1
  shift
  if [ ! -f "build/$preset/build.ninja" ]; then
    echo "Building into build/$preset; the first time takes some minutes" >&2
    cmake --preset "$preset" >/dev/null
  fi
  cmake --build --preset "$preset" ${1:+--target "$@"} -- --quiet >&2
}

mapfile -t build_packages <scripts/debian-packages.txt
install_packages "${build_packages[@]}"
