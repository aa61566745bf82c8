# Cross-builds for 64-bit Windows with Debian's MinGW-w64 (threads of the C++ library over winpthreads) and runs what it
# built under Wine.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# Libraries come from the compiler's own folders and from what scripts/windows-libraries.sh built; never from those of
# this machine.
set(PLUGINCORE_WINDOWS_LIBRARIES "${CMAKE_CURRENT_LIST_DIR}/../build/windows-libraries/prefix"
  CACHE PATH "Where scripts/windows-libraries.sh put the third-party libraries")
cmake_path(NORMAL_PATH PLUGINCORE_WINDOWS_LIBRARIES)
set(CMAKE_FIND_ROOT_PATH "${PLUGINCORE_WINDOWS_LIBRARIES}" /usr/x86_64-w64-mingw32)
# Headers that Debian's packages keep in folders for this machine's kind.
set(fmt_DIR "${PLUGINCORE_WINDOWS_LIBRARIES}/lib/x86_64-linux-gnu/cmake/fmt" CACHE PATH "")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} "${PLUGINCORE_WINDOWS_LIBRARIES}/lib/pkgconfig")
set(ENV{PKG_CONFIG_PATH} "")
# Of the packaged one there is a shared form, too.
set(ZLIB_LIBRARY /usr/x86_64-w64-mingw32/lib/libz.a CACHE FILEPATH "")

set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../scripts/wine-test")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES PLUGINCORE_WINDOWS_LIBRARIES)
