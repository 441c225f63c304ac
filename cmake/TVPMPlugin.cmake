# tvpm_add_plugin(NAME SOURCES src... [OUTPUT_DIR dir] [LAYOUT fat|flat]):
# builds a TVPM plugin as NAME/lin_x64/NAME.tvp below OUTPUT_DIR (the fat
# layout the plugin manager loads; LAYOUT flat gives OUTPUT_DIR/NAME.tvp).
# Only the five entry points are exported (TPluginStart, TPluginStop,
# TPluginEnable, TPluginDisable, TPluginReceiveMessage): a version script
# hides everything else, whatever the sources' own visibility. TVPM's
# functions stay undefined in the plugin and are resolved when the
# simulator loads it, so the plugin never links against TVPM_64.so.
include_guard(GLOBAL)

function(_tvpm_plugin_export_map out)
  set(map ${CMAKE_BINARY_DIR}/tvpm_plugin_exports.map)
  if(NOT EXISTS ${map})
    file(WRITE ${map} "{\n  global:\n    TPluginStart;\n    TPluginStop;\n    TPluginEnable;\n"
                      "    TPluginDisable;\n    TPluginReceiveMessage;\n  local:\n    *;\n};\n")
  endif()
  set(${out} ${map} PARENT_SCOPE)
endfunction()

function(tvpm_add_plugin name)
  cmake_parse_arguments(ARG "" "OUTPUT_DIR;LAYOUT" "SOURCES" ${ARGN})
  if(NOT ARG_SOURCES)
    message(FATAL_ERROR "tvpm_add_plugin(${name}): no SOURCES given")
  endif()
  if(NOT ARG_OUTPUT_DIR)
    set(ARG_OUTPUT_DIR ${CMAKE_CURRENT_BINARY_DIR}/plugins)
  endif()
  if(ARG_LAYOUT STREQUAL "flat")
    set(out_dir ${ARG_OUTPUT_DIR})
  elseif(NOT ARG_LAYOUT OR ARG_LAYOUT STREQUAL "fat")
    set(out_dir ${ARG_OUTPUT_DIR}/${name}/lin_x64)
  else()
    message(FATAL_ERROR "tvpm_add_plugin(${name}): LAYOUT must be fat or flat")
  endif()
  add_library(${name} MODULE ${ARG_SOURCES})
  set_target_properties(${name} PROPERTIES
    PREFIX ""
    SUFFIX ".tvp"
    OUTPUT_NAME ${name}
    LIBRARY_OUTPUT_DIRECTORY ${out_dir}
    C_VISIBILITY_PRESET hidden
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  _tvpm_plugin_export_map(map)
  target_link_options(${name} PRIVATE "LINKER:--version-script=${map}")
  set_property(TARGET ${name} APPEND PROPERTY LINK_DEPENDS ${map})
  # GCC marks some C++ globals "unique", which keeps a library mapped after
  # dlclose; a plugin must go away when the simulator unloads it.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${name} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-fno-gnu-unique>)
  endif()
  if(TARGET TVPM::Headers)
    target_link_libraries(${name} PRIVATE TVPM::Headers)
  elseif(TARGET TVPMHeaders)
    target_link_libraries(${name} PRIVATE TVPMHeaders)
  endif()
endfunction()
