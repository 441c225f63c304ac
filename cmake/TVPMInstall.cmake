# Installs the library, the public headers and the plugin SDK's package files.
add_library(TVPMHeaders INTERFACE)
add_library(TVPM::Headers ALIAS TVPMHeaders)
set_target_properties(TVPMHeaders PROPERTIES EXPORT_NAME Headers)
target_include_directories(TVPMHeaders INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/Headers>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
