# Part of the installation: takes the debug information out of what was just installed. OBJCOPY: the tool; FILES: paths;
# SYMBOLS: the folder that gets FILE-NAME.debug of each, or empty where the build's own files are enough.
foreach(file IN LISTS FILES)
  set(link "")
  if(SYMBOLS)
    cmake_path(GET file FILENAME name)
    set(symbols "${SYMBOLS}/${name}.debug")
    file(MAKE_DIRECTORY "${SYMBOLS}")
    execute_process(COMMAND "${OBJCOPY}" --only-keep-debug "${file}" "${symbols}" COMMAND_ERROR_IS_FATAL ANY)
    set(link "--add-gnu-debuglink=${symbols}")
  endif()
  execute_process(COMMAND "${OBJCOPY}" --strip-unneeded ${link} "${file}" COMMAND_ERROR_IS_FATAL ANY)
endforeach()
