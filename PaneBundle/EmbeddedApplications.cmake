# Lays the applications that the pane starts out as bundles in its resources:
# Contents/Resources/NAME.app/Contents/{Info.plist,Linux/NAME}; with RESOURCES also what lies in the build tree's share/,
# and beside NAME the programs that follow HELPERS.
function(farview_embed_application NAME)
  cmake_parse_arguments(ARG "RESOURCES" "" "HELPERS" ${ARGN})
  if(NOT TARGET ${NAME})
    return()
  endif()
  set(contents "${CMAKE_BINARY_DIR}/Farview Preferences.prefPane/Contents/Resources/${NAME}.app/Contents")
  get_target_property(folder ${NAME} SOURCE_DIR)
  configure_file("${folder}/Info.plist.in" "${contents}/Info.plist" @ONLY)
  foreach(program ${NAME} ${ARG_HELPERS})
    set(copy "${contents}/Linux/${program}")
    list(APPEND copies "${copy}")
    add_custom_command(OUTPUT "${copy}"
      COMMAND ${CMAKE_COMMAND} -E make_directory "${contents}/Linux"
      # A running program's file cannot be written, but it can be replaced.
      COMMAND ${CMAKE_COMMAND} -E rm -f "${copy}"
      COMMAND ${CMAKE_COMMAND} -E copy "$<TARGET_FILE:${program}>" "${copy}"
      DEPENDS ${program} VERBATIM)
  endforeach()
  if(ARG_RESOURCES)
    add_custom_command(OUTPUT "${copy}" APPEND
      COMMAND ${CMAKE_COMMAND} -E copy_directory "${CMAKE_BINARY_DIR}/share" "${contents}/Resources"
      DEPENDS icons)
  endif()
  add_custom_target(${NAME}Application DEPENDS ${copies})
  add_dependencies(FarviewPreferences ${NAME}Application)
endfunction()
