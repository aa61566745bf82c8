# How everything here is compiled, and the few functions with which the folders describe themselves.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/archive")
set(CMAKE_INSTALL_LIBDIR lib CACHE STRING "Folder for libraries below the prefix; the host looks for the core there")
# Programs and libraries find ours from where they stand, before they are installed, too: what would be replaced at
# installation is padded with empty entries until then, which stand for the folder that a program is started in.
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN:$ORIGIN/../lib")
set(CMAKE_INSTALL_RPATH_USE_LINK_PATH ON)
# The agent and its interface library live together, apart from what a host loads.
set(PLUGINCORE_FONT_MANAGER_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib/vantorix")
set(PLUGINCORE_TEST_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/tests")
# The name of the folders that hold what only this system has.
set(PLUGINCORE_SYSTEM linux)
if(WIN32)
  set(PLUGINCORE_SYSTEM windows)
  # Libraries have plain names, and are found beside the program that needs them: corefoundation puts its own there.
  set(CMAKE_SHARED_LIBRARY_PREFIX "")
endif()

find_package(Threads REQUIRED)

add_library(plugincore-build-options INTERFACE)
target_compile_options(plugincore-build-options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>
  # Of sources that are compiled as one, it takes each for a header.
  $<$<AND:$<COMPILE_LANG_AND_ID:CXX,GNU>,$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>>:-Wno-subobject-linkage>
  # Paths in log lines are relative to the repository, whatever folder it was cloned into.
  "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=")
# Debug builds check the bounds of containers.
target_compile_definitions(plugincore-build-options INTERFACE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
target_link_libraries(plugincore-build-options INTERFACE Threads::Threads)
if(WIN32)
  # Windows 10 and later, by its wide functions.
  target_compile_definitions(plugincore-build-options INTERFACE
    UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00)
  # The compiler's runtime is part of each binary: nothing but the system's own libraries need be there.
  # Crash reports name the very build by its identifier.
  target_link_options(plugincore-build-options INTERFACE -static LINKER:--build-id)
endif()
if(PLUGINCORE_SANITIZE)
  target_compile_options(plugincore-build-options INTERFACE
    -fsanitize=${PLUGINCORE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_compile_definitions(plugincore-build-options INTERFACE PLUGINCORE_SANITIZED)
  target_link_options(plugincore-build-options INTERFACE -fsanitize=${PLUGINCORE_SANITIZE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    # A program in C that loads our libraries brings what they need of the sanitizers for C++.
    target_link_options(plugincore-build-options INTERFACE
      $<$<LINK_LANGUAGE:C>:-fsanitize-link-c++-runtime> $<$<LINK_LANGUAGE:C>:-lstdc++>)
  endif()
endif()

# plugincore_library(NAME STATIC|SHARED SOURCES ... [INCLUDES PUBLIC-FOLDERS] [LINKS ...] [PRIVATE_LINKS ...])
# A folder's library. What is not named in LINKS or PRIVATE_LINKS cannot be included.
function(plugincore_library name kind)
  cmake_parse_arguments(ARG "" "" "SOURCES;INCLUDES;LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(${name} ${kind} ${ARG_SOURCES})
  foreach(folder IN LISTS ARG_INCLUDES)
    cmake_path(ABSOLUTE_PATH folder BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" NORMALIZE)
    target_include_directories(${name} PUBLIC "$<BUILD_INTERFACE:${folder}>")
  endforeach()
  target_link_libraries(${name} PUBLIC ${ARG_LINKS} PRIVATE plugincore-build-options ${ARG_PRIVATE_LINKS})
endfunction()

# As the tests' programs name a file or folder of this machine: where they run under Wine, by its drive.
function(plugincore_path_for_tests path result)
  set(drive "")
  if(WIN32 AND CMAKE_CROSSCOMPILING)
    set(drive "Z:")
  endif()
  set(${result} "${drive}${path}" PARENT_SCOPE)
endfunction()

# plugincore_separate_symbols(FOLDER TARGETS ... [TO SYMBOLS-FOLDER] [INSTALL component ...])
# After the targets were installed into that folder of the prefix: their debug information stands in the other one, or in
# the build alone. Elsewhere those who make packages strip them, and nothing is done.
function(plugincore_separate_symbols folder)
  if(NOT WIN32)
    return()
  endif()
  cmake_parse_arguments(ARG "" "TO" "TARGETS;INSTALL" ${ARGN})
  set(prefix "\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}")
  set(files "")
  foreach(target IN LISTS ARG_TARGETS)
    list(APPEND files "${prefix}/${folder}/$<TARGET_FILE_NAME:${target}>")
  endforeach()
  set(symbols "")
  if(ARG_TO)
    set(symbols "${prefix}/${ARG_TO}")
  endif()
  install(CODE "
    set(OBJCOPY \"${CMAKE_OBJCOPY}\")
    set(FILES \"${files}\")
    set(SYMBOLS \"${symbols}\")
    include(\"${PROJECT_SOURCE_DIR}/cmake/SeparateSymbols.cmake\")" ${ARG_INSTALL})
endfunction()

# A program that stands with the tests, in the build and, for Windows, where they are taken along: scripts and programs
# of the component "tests", which is installed when it is named alone.
function(plugincore_test_program name)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PLUGINCORE_TEST_OUTPUT_DIRECTORY}")
  # What they test is built as it is shipped; they themselves are compiled and linked faster so.
  target_compile_options(${name} PRIVATE $<$<CONFIG:RelWithDebInfo>:-Og> $<$<CONFIG:RelWithDebInfo>:-g1>)
  if(WIN32 AND PLUGINCORE_INSTALL)
    set(component COMPONENT tests EXCLUDE_FROM_ALL)
    install(TARGETS ${name} RUNTIME DESTINATION tests ${component})
    plugincore_separate_symbols(tests TARGETS ${name} INSTALL ${component})
    set_property(GLOBAL APPEND PROPERTY PLUGINCORE_TEST_PROGRAMS ${name})
  endif()
endfunction()

# plugincore_built_files(TARGET MACRO=FILE-OF-TARGET ...)
# Macros for a test with what was built, as BuiltFile (tests/support/TestFiles.h) takes it; built before the test.
function(plugincore_built_files target)
  set(scope PRIVATE)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL STATIC_LIBRARY)
    set(scope PUBLIC)
  endif()
  foreach(pair IN LISTS ARGN)
    string(REPLACE "=" ";" pair ${pair})
    list(GET pair 0 macro)
    list(GET pair 1 file_target)
    target_compile_definitions(${target} ${scope}
      "${macro}=\"$<PATH:RELATIVE_PATH,$<TARGET_FILE:${file_target}>,${PROJECT_BINARY_DIR}>\"")
    add_dependencies(${target} ${file_target})
  endforeach()
endfunction()

# plugincore_test(NAME SOURCES ... LINKS ... [EACH_CASE] [LOCK RESOURCE] [ENVIRONMENT VAR=VALUE ...])
# One GoogleTest program, which ctest runs as a whole and shuffled, on Linux among processes of its own; its report goes to
# test-reports/NAME.xml. EACH_CASE: each of its cases is a process of its own. Where all see the same processes, what has
# the same LOCK runs one after the other.
function(plugincore_test name)
  if(NOT PLUGINCORE_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(ARG "EACH_CASE" "LOCK" "SOURCES;LINKS;ENVIRONMENT" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE plugincore-build-options ${ARG_LINKS} GTest::gmock GTest::gtest_main)
  plugincore_test_program(${name})
  plugincore_path_for_tests("${PROJECT_SOURCE_DIR}" sources)
  # Beside the variables below: a property of a case cannot be a list.
  set(properties ENVIRONMENT_MODIFICATION "PLUGINCORE_SOURCES=set:${sources}")
  if(WIN32)
    list(APPEND ARG_ENVIRONMENT PLUGINCORE_PORTABLE=1)  # tests have folders of their own
    if(ARG_LOCK)
      list(APPEND properties RESOURCE_LOCK ${ARG_LOCK})
    endif()
  else()
    # The only fonts that their system has are those of the test's own user.
    list(APPEND ARG_ENVIRONMENT "FONTCONFIG_FILE=${PROJECT_SOURCE_DIR}/tests/support/fonts.conf")
    set_target_properties(${name} PROPERTIES CROSSCOMPILING_EMULATOR "${PROJECT_SOURCE_DIR}/scripts/isolated")
  endif()
  if(ARG_EACH_CASE)
    if(ARG_ENVIRONMENT)
      list(APPEND properties ENVIRONMENT "${ARG_ENVIRONMENT}")
    endif()
    gtest_discover_tests(${name} TEST_PREFIX "${name}." DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
      PROPERTIES TIMEOUT 120 ${properties})
  else()
    plugincore_path_for_tests("${PROJECT_BINARY_DIR}/test-reports/${name}.xml" report)
    add_test(NAME ${name} COMMAND ${name} --gtest_shuffle --gtest_brief=1)
    set_tests_properties(${name} PROPERTIES TIMEOUT 300
      ENVIRONMENT "GTEST_OUTPUT=xml:${report};${ARG_ENVIRONMENT}" ${properties})
  endif()
endfunction()

# plugincore_window_test(NAME SOURCES ... LINKS ...)
# One GoogleTest program whose cases need a screen, run as a whole, with a screen of its own. Skipped where there is none.
function(plugincore_window_test name)
  if(NOT PLUGINCORE_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE plugincore-build-options ${ARG_LINKS} test-dialogs GTest::gmock)
  plugincore_test_program(${name})
  set(on_screen on-screen)
  if(WIN32)
    set(on_screen wine-on-screen)
  endif()
  set_target_properties(${name} PROPERTIES CROSSCOMPILING_EMULATOR "${PROJECT_SOURCE_DIR}/scripts/${on_screen}")
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 300)
  if(WIN32)
    set_tests_properties(${name} PROPERTIES RESOURCE_LOCK screen ENVIRONMENT PLUGINCORE_PORTABLE=1)
  endif()
endfunction()

# plugincore_version(TARGET [FILE_VERSION V] [PRIVATE_BUILD V] [INTERNAL_NAME V] [HOST_APP_MINIMUM_VERSION V]
#                    [DESCRIPTION TEXT] [STRINGS ID.LANGUAGE=TEXT ...])
# Gives a binary the version pairs that platform/VersionResource.h reads back; both versions are the project's unless they
# are named. Windows shows the description to users,
# and programs tell it there what they are made for. Elsewhere STRINGS stand for string resources.
function(plugincore_version target)
  cmake_parse_arguments(ARG "" "FILE_VERSION;PRIVATE_BUILD;INTERNAL_NAME;HOST_APP_MINIMUM_VERSION;DESCRIPTION"
    "STRINGS" ${ARGN})
  foreach(version IN ITEMS FILE_VERSION PRIVATE_BUILD)
    if(NOT DEFINED ARG_${version})
      set(ARG_${version} "${PROJECT_VERSION}.0")
    endif()
  endforeach()
  if(WIN32)
    set(language RC)
    set(template version-resource.rc.in)
  else()
    set(language C)
    set(template version-section.c.in)
  endif()
  set(VERSION_PAIRS "")
  foreach(pair FileVersion:FILE_VERSION PrivateBuild:PRIVATE_BUILD InternalName:INTERNAL_NAME
               HostAppMinimumVersion:HOST_APP_MINIMUM_VERSION)
    string(REPLACE ":" ";" pair ${pair})
    list(GET pair 0 key)
    list(GET pair 1 argument)
    if(NOT DEFINED ARG_${argument})
      continue()
    elseif(WIN32)
      string(APPEND VERSION_PAIRS "      VALUE \"${key}\", \"${ARG_${argument}}\"\n")
    else()
      string(APPEND VERSION_PAIRS "    \"${key}=${ARG_${argument}}\\0\"\n")
    endif()
  endforeach()
  if(NOT WIN32)
    foreach(pair IN LISTS ARG_STRINGS)
      string(APPEND VERSION_PAIRS "    \"String${pair}\\0\"\n")
    endforeach()
  endif()
  string(REPLACE "." "," VERSION_NUMBERS "${ARG_FILE_VERSION}")
  string(REPLACE "." "," PRODUCT_NUMBERS "${PROJECT_VERSION}")
  get_target_property(type ${target} TYPE)
  get_target_property(VERSION_FILE_NAME ${target} OUTPUT_NAME)
  if(NOT VERSION_FILE_NAME)
    set(VERSION_FILE_NAME ${target})
  endif()
  set(VERSION_FILE_TYPE VFT_APP)
  set(extension .exe)
  set(VERSION_MANIFEST
    "CREATEPROCESS_MANIFEST_RESOURCE_ID RT_MANIFEST \"${PROJECT_SOURCE_DIR}/cmake/program.manifest\"")
  if(type STREQUAL SHARED_LIBRARY)
    set(VERSION_FILE_TYPE VFT_DLL)
    set(extension .dll)
    set(VERSION_MANIFEST "")
  endif()
  string(APPEND VERSION_FILE_NAME ${extension})
  set(VERSION_DESCRIPTION "${target}")
  if(DEFINED ARG_DESCRIPTION)
    set(VERSION_DESCRIPTION "${ARG_DESCRIPTION}")
  endif()
  cmake_path(REMOVE_EXTENSION template LAST_ONLY OUTPUT_VARIABLE extension)
  cmake_path(GET extension EXTENSION LAST_ONLY extension)
  set(source "${CMAKE_CURRENT_BINARY_DIR}/${target}-version${extension}")
  configure_file("${PROJECT_SOURCE_DIR}/cmake/${template}" "${source}" @ONLY)
  target_sources(${target} PRIVATE "${source}")
  set_source_files_properties("${source}" PROPERTIES LANGUAGE ${language})
endfunction()

# plugincore_export_only(TARGET NAMES name... | TARGET LISTED_IN HEADER): the library exports exactly the names given, or
# those of the header's list of functions, whose lines begin "X(NAME".
function(plugincore_export_only target kind)
  set(names ${ARGN})
  if(kind STREQUAL "LISTED_IN")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${ARGN}")
    file(READ "${ARGN}" text)
    string(REGEX MATCHALL "\n +X\\([A-Za-z]+" names "${text}")
    list(TRANSFORM names REPLACE ".*\\(" "")
  endif()
  if(WIN32)
    list(JOIN names "\n  " names)
    set(list "${CMAKE_CURRENT_BINARY_DIR}/${target}.def")
    file(CONFIGURE OUTPUT "${list}" CONTENT "EXPORTS\n  ${names}\n")
    target_sources(${target} PRIVATE "${list}")
    target_link_options(${target} PRIVATE "LINKER:--exclude-all-symbols")
  else()
    list(JOIN names ";\n    " names)
    set(list "${CMAKE_CURRENT_BINARY_DIR}/${target}.map")
    file(CONFIGURE OUTPUT "${list}" CONTENT "{\n  global:\n    ${names};\n  local:\n    *;\n};\n")
    # A host that unloads the library leaves its code in place: threads and callbacks may still be in it.
    target_link_options(${target} PRIVATE "LINKER:--version-script=${list}" "LINKER:--no-undefined-version"
      "LINKER:-z,nodelete")
    set_target_properties(${target} PROPERTIES LINK_DEPENDS "${list}")
  endif()
endfunction()
