# A target that copies files of this folder into the resources of a bundle whenever they changed.
function(farview_bundle_resources TARGET CONTENTS)
  set(copies)
  foreach(resource ${ARGN})
    set(file "${CMAKE_CURRENT_SOURCE_DIR}/${resource}")
    set(copy "${CONTENTS}/Resources/${resource}")
    add_custom_command(OUTPUT "${copy}"
      COMMAND ${CMAKE_COMMAND} -E copy "${file}" "${copy}"
      DEPENDS ${resource} VERBATIM)
    list(APPEND copies "${copy}")
  endforeach()
  add_custom_target(${TARGET} DEPENDS ${copies})
endfunction()

# The library of a pane, in its bundle.
function(farview_pane_library TARGET CONTENTS)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_library(${TARGET} MODULE ${ARG_SOURCES})
  set_property(GLOBAL APPEND PROPERTY FARVIEW_PRODUCT_TARGETS ${TARGET})
  target_link_libraries(${TARGET} PRIVATE farview_options ${ARG_LINK})
  # Of everything linked in, other modules see only what makes it a plug-in.
  set(exported "${CMAKE_SOURCE_DIR}/PaneBundle/ExportedSymbols.map")
  target_link_options(${TARGET} PRIVATE "LINKER:--version-script=${exported}")
  set_target_properties(${TARGET} PROPERTIES
    AUTOMOC ON
    PREFIX ""
    LINK_DEPENDS "${exported}"
    LIBRARY_OUTPUT_DIRECTORY "${CONTENTS}/Linux")
endfunction()
