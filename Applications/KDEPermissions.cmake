# farview_write_kde_permissions(FOLDER PREFIX program ...): what KDE reads about each program, in FOLDER/PREFIXname.desktop.
function(farview_write_kde_permissions FOLDER PREFIX)
  foreach(PROGRAM ${ARGN})
    cmake_path(GET PROGRAM FILENAME PROGRAM_NAME)
    configure_file("${CMAKE_CURRENT_FUNCTION_LIST_DIR}/kde-permission.desktop.in" "${FOLDER}/${PREFIX}${PROGRAM_NAME}.desktop" @ONLY)
  endforeach()
endfunction()
