# Installs the library, the public headers and the plugin SDK's package files,
# so that an installed copy works with find_package(TVPM) and tvpm_add_plugin.
# The simulator's own header goes in a folder of its own, out of plugins' reach.
include(CMakePackageConfigHelpers)

set(TVPM_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/TVPM)

install(TARGETS TVPM TVPMHeaders TVPMHostHeaders EXPORT TVPMTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY Headers/TVPM DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES TVPM/include/TVPMHost.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/TVPMHost)
install(EXPORT TVPMTargets NAMESPACE TVPM:: DESTINATION ${TVPM_INSTALL_CMAKEDIR})

file(WRITE ${PROJECT_BINARY_DIR}/TVPMConfig.cmake.in [=[
# TVPMConfig.cmake: the installed TVPM plugin SDK.
#   TVPM::TVPM     the plugin manager library, TVPM_64.so (for simulators)
#   TVPM::Headers  the public plugin headers (for plugins)
#   TVPM::HostHeaders  TVPMHost.h, the hook table, for simulators that load
#                  TVPM_64.so themselves
#   tvpm_add_plugin(NAME SOURCES ...)  builds a plugin in the layout TVPM loads
@PACKAGE_INIT@
include("${CMAKE_CURRENT_LIST_DIR}/TVPMTargets.cmake")
include("${CMAKE_CURRENT_LIST_DIR}/TVPMPlugin.cmake")
# The headless simulator, when it was installed: run `${TVPM_HOST_EXECUTABLE}
# --check --plugin <your plugin folder>` to validate a plugin.
if(EXISTS "${PACKAGE_PREFIX_DIR}/@CMAKE_INSTALL_BINDIR@/tvpm-host")
  set(TVPM_HOST_EXECUTABLE "${PACKAGE_PREFIX_DIR}/@CMAKE_INSTALL_BINDIR@/tvpm-host")
endif()
check_required_components(TVPM)
]=])
configure_package_config_file(${PROJECT_BINARY_DIR}/TVPMConfig.cmake.in
  ${PROJECT_BINARY_DIR}/TVPMConfig.cmake
  INSTALL_DESTINATION ${TVPM_INSTALL_CMAKEDIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TVPMConfigVersion.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TVPMConfig.cmake ${PROJECT_BINARY_DIR}/TVPMConfigVersion.cmake
  cmake/TVPMPlugin.cmake
  DESTINATION ${TVPM_INSTALL_CMAKEDIR})
