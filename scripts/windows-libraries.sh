#!/usr/bin/env bash
# Builds the third-party libraries for Windows that Debian has no MinGW package for, from Debian's source packages,
# into build/windows-libraries/prefix. Each is built once; one that changed in Debian is built when that folder is
# removed.
#
# The sources are fetched through an apt configuration of its own, so that the machine's stays as it is.
set -euo pipefail
cd "$(dirname -- "$(readlink -f -- "$0")")/.."
toolchain=$PWD/cmake/mingw-w64.cmake
host=x86_64-w64-mingw32
release=$(. /etc/os-release && echo "$VERSION_CODENAME")
root=$PWD/build/windows-libraries
prefix=$root/prefix
mkdir -p "$root"/{apt/lists/partial,apt/cache/archives/partial,apt/state,done,logs,source,build} "$prefix"/{include,lib/pkgconfig}

configure_apt() {
  cat >"$root/apt/sources.list" <<END
deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] http://deb.debian.org/debian $release main
deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] http://deb.debian.org/debian-security $release-security main
END
  cat >"$root/apt/apt.conf" <<END
Dir::State "$root/apt/state";
Dir::State::lists "$root/apt/lists";
Dir::State::status "/var/lib/dpkg/status";
Dir::Cache "$root/apt/cache";
Dir::Etc::sourcelist "$root/apt/sources.list";
Dir::Etc::sourceparts "-";
APT::Sandbox::User "root";
END
  export APT_CONFIG=$root/apt/apt.conf
  ls "$root"/apt/lists/*Sources* >/dev/null 2>&1 || apt-get update -qq
}

# Unpacks a source package, with Debian's patches, into source/PACKAGE: the newest version, or where a mirror does not
# have that yet, the release's own.
fetch_source() {
  local package=$1
  [ ! -d "$root/source/$package" ] || return 0
  rm -rf "$root/source/$package.part"
  mkdir -p "$root/source/$package.part"
  (cd "$root/source/$package.part" && { apt-get source -qq "$package" || apt-get source -qq "$package/$release"; })
  mv "$root/source/$package.part"/*/ "$root/source/$package"
  rm -rf "$root/source/$package.part"
}

# Unpacks the first of a source package's own archives alone.
fetch_archive() {
  local package=$1 uri file digest
  [ ! -d "$root/source/$package" ] || return 0
  read -r uri file _ digest < <(apt-get source --print-uris -qq "$package" | grep -E "\.orig\.tar\.[a-z]+' ")
  uri=${uri//\'/}
  rm -rf "$root/source/$package.part"
  mkdir -p "$root/source/$package.part"
  /usr/lib/apt/apt-helper download-file "$uri" "$root/source/$file" "$digest"
  tar -xf "$root/source/$file" -C "$root/source/$package.part" --strip-components=1
  mv "$root/source/$package.part" "$root/source/$package"
  rm "$root/source/$file"
}

# with_cmake NAME SOURCE-FOLDER [OPTION...]
with_cmake() {
  local name=$1 source=$2
  shift 2
  cmake -S "$source" -B "$root/build/$name" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_INSTALL_PREFIX="$prefix" -DCMAKE_INSTALL_LIBDIR=lib \
    -DBUILD_SHARED_LIBS=OFF -DCMAKE_POSITION_INDEPENDENT_CODE=ON "$@"
  cmake --build "$root/build/$name"
  cmake --install "$root/build/$name"
}

# Libraries that are headers alone are taken from this machine's packages.
build_headers() {
  local package file
  for package in libasio-dev libcli11-dev libfmt-dev libutfcpp-dev libvalijson-dev nlohmann-json3-dev; do
    while read -r file; do
      case $file in
        */fmt-targets-none.cmake) continue ;;  # the compiled form of that library
        /usr/include/* | */cmake/*) ;;
        *) continue ;;
      esac
      [ -f "$file" ] || continue
      mkdir -p "$prefix/$(dirname "${file#/usr/}")"
      cp "$file" "$prefix/${file#/usr/}"
    done < <(dpkg -L "$package")
  done
}

# GNU libiconv, whose sources Debian has as a part of this package.
build_iconv() {
  fetch_archive node-iconv
  # The signature of POSIX; the package's own use of it differs.
  sed -i 's/const char\* \* inbuf/char* * inbuf/' "$root/source/node-iconv/support/iconv.h"
  mkdir -p "$root/build/iconv"
  cat >"$root/build/iconv/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.25)
project(iconv C)
add_library(iconv STATIC "${SOURCE}/deps/libiconv/lib/iconv.c" "${SOURCE}/support/localcharset.c")
target_include_directories(iconv PRIVATE "${SOURCE}/support")
target_compile_definitions(iconv PRIVATE ICONV_CONST= ENABLE_EXTRA=1)
install(TARGETS iconv)
install(FILES "${SOURCE}/support/iconv.h" TYPE INCLUDE)
END
  with_cmake iconv "$root/build/iconv" -DSOURCE="$root/source/node-iconv"
}

build_yajl() {
  fetch_source yajl
  mkdir -p "$root/build/yajl"
  cat >"$root/build/yajl/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.25)
project(yajl VERSION 2.1.0 LANGUAGES C)
set(YAJL_MAJOR 2)
set(YAJL_MINOR 1)
set(YAJL_MICRO 0)
configure_file("${SOURCE}/src/api/yajl_version.h.cmake" yajl/yajl_version.h)
file(GLOB sources "${SOURCE}/src/*.c")
file(GLOB headers "${SOURCE}/src/api/*.h")
file(COPY ${headers} DESTINATION yajl)
add_library(yajl STATIC ${sources})
target_include_directories(yajl PRIVATE "${CMAKE_CURRENT_BINARY_DIR}")
install(TARGETS yajl)
install(FILES ${headers} "${CMAKE_CURRENT_BINARY_DIR}/yajl/yajl_version.h" DESTINATION include/yajl)
END
  with_cmake yajl "$root/build/yajl" -DSOURCE="$root/source/yajl"
}

# Its own marks would make every library that it is linked into export it.
build_libxml2() {
  fetch_source libxml2
  with_cmake libxml2 "$root/source/libxml2" -DLIBXML2_WITH_ICONV=ON -DLIBXML2_WITH_LZMA=OFF -DLIBXML2_WITH_ZLIB=OFF \
    -DLIBXML2_WITH_PYTHON=OFF -DLIBXML2_WITH_PROGRAMS=OFF -DLIBXML2_WITH_TESTS=OFF -DLIBXML2_WITH_FTP=OFF \
    -DLIBXML2_WITH_HTTP=OFF -DIconv_IS_BUILT_IN=OFF -DCMAKE_C_FLAGS=-DLIBXML_STATIC
}

# Autoconf's makefiles do not work in a folder whose path has a blank: prints a copy of the sources where it has none.
copy_to_plain_path() {
  local plain
  plain=$(mktemp -d /tmp/windows-libraries.XXXXXX)
  cp -a "$root/source/$1/." "$plain"
  echo "$plain"
}

build_sqlite3() {
  fetch_source sqlite3
  local plain
  plain=$(copy_to_plain_path sqlite3)
  (
    cd "$plain"
    # The one file of all of it is made with programs for this machine.
    ./configure --disable-tcl --disable-readline
    make sqlite3.c sqlite3.h
    $host-gcc-posix -O2 -g -DSQLITE_THREADSAFE=1 -DSQLITE_DQS=0 -DSQLITE_OMIT_LOAD_EXTENSION -c sqlite3.c -o sqlite3.o
    $host-ar rcs "$prefix/lib/libsqlite3.a" sqlite3.o
    cp sqlite3.h sqlite3ext.h "$prefix/include/"
  )
  rm -rf "$plain"
}

build_freetype() {
  fetch_source freetype
  local source=$root/source/freetype
  [ -f "$source/CMakeLists.txt" ] || source=$(dirname "$(find "$source" -maxdepth 2 -name CMakeLists.txt | head -n 1)")
  with_cmake freetype "$source" -DFT_REQUIRE_ZLIB=ON -DFT_DISABLE_BZIP2=ON -DFT_DISABLE_PNG=ON -DFT_DISABLE_HARFBUZZ=ON \
    -DFT_DISABLE_BROTLI=ON
}

build_libpng() {
  fetch_source libpng1.6
  with_cmake libpng "$root/source/libpng1.6" -DPNG_SHARED=OFF -DPNG_TESTS=OFF -DPNG_EXECUTABLES=OFF
}

build_nettle() {
  fetch_source nettle
  local plain
  plain=$(copy_to_plain_path nettle)
  (
    cd "$plain"
    CC=$host-gcc-posix ./configure --host=$host --disable-shared --disable-public-key --disable-assembler \
      --disable-documentation --disable-openssl
    make libnettle.a
    mkdir -p "$prefix/include/nettle"
    cp libnettle.a "$prefix/lib/"
    cp ./*.h "$prefix/include/nettle/"
  )
  rm -rf "$plain"
}

build_googletest() {
  with_cmake googletest /usr/src/googletest
}

for library in headers iconv yajl libxml2 sqlite3 freetype libpng nettle googletest; do
  [ ! -e "$root/done/$library" ] || continue
  echo "Building $library for Windows" >&2
  case $library in headers | googletest) ;; *) [ -n "${APT_CONFIG:-}" ] || configure_apt ;; esac
  log=$root/logs/$library
  set +e
  (set -e; "build_$library") >"$log" 2>&1
  status=$?
  set -e
  if [ $status != 0 ]; then
    tail -n 30 "$log" >&2
    echo "windows-libraries: $library could not be built; all that was printed is in $log" >&2
    exit 1
  fi
  rm -rf "${root:?}/source/$library"
  touch "$root/done/$library"
done
