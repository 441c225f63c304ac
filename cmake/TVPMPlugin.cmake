# tvpm_add_plugin(NAME SOURCES src... [OUTPUT_DIR dir] [LAYOUT fat|flat]):
# builds a TVPM plugin as NAME/lin_x64/NAME.tvp below OUTPUT_DIR (the fat
# layout the plugin manager loads), with every symbol hidden except the five
# entry points. Symbols of the plugin manager are resolved when the plugin is
# loaded into the simulator.
function(tvpm_add_plugin name)
  cmake_parse_arguments(ARG "" "OUTPUT_DIR;LAYOUT" "SOURCES" ${ARGN})
  if(NOT ARG_OUTPUT_DIR)
    set(ARG_OUTPUT_DIR ${CMAKE_CURRENT_BINARY_DIR}/plugins)
  endif()
  add_library(${name} MODULE ${ARG_SOURCES})
  if(ARG_LAYOUT STREQUAL "flat")
    set(out_dir ${ARG_OUTPUT_DIR})
  else()
    set(out_dir ${ARG_OUTPUT_DIR}/${name}/lin_x64)
  endif()
  set_target_properties(${name} PROPERTIES
    PREFIX ""
    SUFFIX ".tvp"
    OUTPUT_NAME ${name}
    LIBRARY_OUTPUT_DIRECTORY ${out_dir}
    C_VISIBILITY_PRESET hidden
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  if(TARGET TVPM::Headers)
    target_link_libraries(${name} PRIVATE TVPM::Headers)
  elseif(TARGET TVPMHeaders)
    target_link_libraries(${name} PRIVATE TVPMHeaders)
  endif()
endfunction()
