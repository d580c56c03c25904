# Writes the pane's Info.plist, when the build is configured and again when it is installed: the
# pages of the manual, where the panel sends its user for help, then lie elsewhere.

# Makes a path part of an address.
function(farview_file_address VARIABLE PATH)
  foreach(pair "%=25" " =20" "\"=22" "#=23" "&=26" "<=3C" ">=3E" "?=3F")
    string(SUBSTRING "${pair}" 0 1 letter)
    string(SUBSTRING "${pair}" 2 2 code)
    string(REPLACE "${letter}" "%${code}" PATH "${PATH}")
  endforeach()
  set(${VARIABLE} "file://${PATH}" PARENT_SCOPE)
endfunction()

# Makes a text fit for XML.
function(farview_xml_text VARIABLE TEXT)
  string(REPLACE "&" "&amp;" text "${TEXT}")
  string(REPLACE "<" "&lt;" text "${text}")
  set(${VARIABLE} "${text}" PARENT_SCOPE)
endfunction()

# The address that the build was told, else that page; fit for XML.
function(farview_page_address VARIABLE TOLD PAGE)
  set(address "${TOLD}")
  if(address STREQUAL "")
    farview_file_address(address "${PAGE}")
  endif()
  farview_xml_text(address "${address}")
  set(${VARIABLE} "${address}" PARENT_SCOPE)
endfunction()

# MANUAL is the folder of the pages. Uses PROJECT_VERSION, FARVIEW_INSTALLER_URL, FARVIEW_SUPPORT_URL, FARVIEW_UPDATE_FEED and FARVIEW_UPDATE_KEY.
function(farview_write_pane_info OUTPUT MANUAL)
  farview_page_address(FARVIEW_INSTALLER_ADDRESS "${FARVIEW_INSTALLER_URL}" "${MANUAL}/installation.html")
  farview_page_address(FARVIEW_SUPPORT_ADDRESS "${FARVIEW_SUPPORT_URL}" "${MANUAL}/graphics-cards.html")
  farview_xml_text(FARVIEW_UPDATE_ADDRESS "${FARVIEW_UPDATE_FEED}")
  configure_file("${CMAKE_CURRENT_FUNCTION_LIST_DIR}/Info.plist.in" "${OUTPUT}" @ONLY)
endfunction()
