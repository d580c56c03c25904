# Lays the applications that the pane starts out as bundles in its resources:
# Contents/Resources/NAME.app/Contents/{Info.plist,Linux/NAME}; with RESOURCES also what lies in the build tree's share/.
function(farview_embed_application NAME)
  if(NOT TARGET ${NAME})
    return()
  endif()
  set(contents "${CMAKE_BINARY_DIR}/Farview Preferences.prefPane/Contents/Resources/${NAME}.app/Contents")
  get_target_property(folder ${NAME} SOURCE_DIR)
  configure_file("${folder}/Info.plist.in" "${contents}/Info.plist" @ONLY)
  set(copy "${contents}/Linux/${NAME}")
  add_custom_command(OUTPUT "${copy}"
    COMMAND ${CMAKE_COMMAND} -E make_directory "${contents}/Linux"
    # A running program's file cannot be written, but it can be replaced.
    COMMAND ${CMAKE_COMMAND} -E rm -f "${copy}"
    COMMAND ${CMAKE_COMMAND} -E copy "$<TARGET_FILE:${NAME}>" "${copy}"
    DEPENDS ${NAME} VERBATIM)
  if("RESOURCES" IN_LIST ARGN)
    add_custom_command(OUTPUT "${copy}" APPEND
      COMMAND ${CMAKE_COMMAND} -E copy_directory "${CMAKE_BINARY_DIR}/share" "${contents}/Resources"
      DEPENDS icons)
  endif()
  add_custom_target(${NAME}Application DEPENDS "${copy}")
  add_dependencies(FarviewPreferences ${NAME}Application)
endfunction()
