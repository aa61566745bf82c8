# What `cmake --install` puts into a prefix. Programs and libraries find each other relative to where they stand.

include(CMakePackageConfigHelpers)

install(TARGETS PluginCore CoreFoundation EXPORT PluginCoreTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/plugincore)
install(TARGETS TarnwickPluginFramework LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
plugincore_separate_symbols(${CMAKE_INSTALL_BINDIR} TO symbols TARGETS PluginCore TarnwickPluginFramework)
install(TARGETS Pellwick PellwickFontWorker PellwickSystemFonts TarnwickPluginInterfaceX64
        RUNTIME DESTINATION ${CMAKE_INSTALL_LIBDIR}/vantorix
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/vantorix)
plugincore_separate_symbols(${CMAKE_INSTALL_LIBDIR}/vantorix TO symbols
  TARGETS Pellwick PellwickFontWorker PellwickSystemFonts TarnwickPluginInterfaceX64)
if(TARGET PluginCoreDialogs)
  install(TARGETS PluginCoreDialogs RUNTIME DESTINATION ${CMAKE_INSTALL_LIBDIR}/vantorix)
endif()
if(WIN32)
  install(TARGETS PellwickBackground RUNTIME DESTINATION ${CMAKE_INSTALL_LIBDIR}/vantorix)
  plugincore_separate_symbols(${CMAKE_INSTALL_LIBDIR}/vantorix TO symbols TARGETS PellwickBackground)
endif()
if(WIN32 AND NOT PLUGINCORE_USE_SYSTEM_COREFOUNDATION)
  install(FILES "$<TARGET_FILE:CoreFoundation>" DESTINATION ${CMAKE_INSTALL_LIBDIR}/vantorix)
  foreach(folder IN ITEMS ${CMAKE_INSTALL_BINDIR} ${CMAKE_INSTALL_LIBDIR}/vantorix)
    plugincore_separate_symbols(${folder} TO symbols TARGETS CoreFoundation)
  endforeach()
endif()
install(TARGETS plugincore-host plugincore-document-reader RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
plugincore_separate_symbols(${CMAKE_INSTALL_BINDIR} TO symbols TARGETS plugincore-host plugincore-document-reader)
install(FILES plugins/plugin-core/include/PluginCoreInterface.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/plugincore)
# The borders behind which other font managers and frameworks can stand.
install(TARGETS contracts EXPORT PluginCoreTargets INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/plugincore)
install(DIRECTORY contracts/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/plugincore)
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR} PATTERN images EXCLUDE)
install(DIRECTORY examples/thin-host examples/other-font-manager DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)
if(NOT WIN32)
  install(DIRECTORY examples/libreoffice examples/gimp DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples USE_SOURCE_PERMISSIONS
    PATTERN __pycache__ EXCLUDE)
endif()
install(DIRECTORY corefoundation/include/CoreFoundation
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/plugincore)

install(EXPORT PluginCoreTargets NAMESPACE PluginCore:: FILE PluginCoreConfig.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/PluginCore)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/PluginCoreConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/PluginCoreConfigVersion.cmake"
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/PluginCore)

file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/plugincore.pc" @ONLY CONTENT [[
prefix=${pcfiledir}/../..
includedir=${prefix}/@CMAKE_INSTALL_INCLUDEDIR@/plugincore
libdir=${prefix}/@CMAKE_INSTALL_LIBDIR@

Name: PluginCore
Description: Shared core of a font auto-activation plug-in
Version: @PROJECT_VERSION@
Cflags: -I${includedir}
Libs: -L${libdir} -lPluginCore
]])
install(FILES "${PROJECT_BINARY_DIR}/plugincore.pc" DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
