#!/usr/bin/env bash
# check-subdirectory.sh SOURCE: the project serves as a part of another one, whose own settings it respects.
set -euo pipefail
folder=$(mktemp -d "${TMPDIR:-/tmp}/plugincore part XXXXXX")
trap 'rm -rf "$folder"' EXIT
cat >"$folder/CMakeLists.txt" <<EOF
cmake_minimum_required(VERSION 3.25)
project(Whole LANGUAGES C CXX)
add_subdirectory("$1" part)
add_library(own SHARED own.cpp)
target_link_libraries(own PRIVATE PluginCore::PluginCore PluginCore::Contracts)
if(TARGET plugin-core-tests OR TARGET IllustratorHost)
  message(FATAL_ERROR "tests and examples are the whole project's alone")
endif()
EOF
echo '#include <PluginCoreInterface.h>' >"$folder/own.cpp"
cmake -S "$folder" -B "$folder/build" -G Ninja >"$folder/log" 2>&1 || { cat "$folder/log"; exit 1; }
# That every source compiles is seen elsewhere: one folder, and what links against the borders, stand for them.
cmake --build "$folder/build" --target font-sdk CMakeFiles/own.dir/own.cpp.o >"$folder/log" 2>&1 || { cat "$folder/log"; exit 1; }
