# Helpers that give every target of the house the same treatment.

set(FARVIEW_WARNINGS -Wall -Wextra -Wpedantic -Wnon-virtual-dtor -Woverloaded-virtual)

add_library(farview_options INTERFACE)
target_compile_options(farview_options INTERFACE ${FARVIEW_WARNINGS})
# Line numbers in backtraces are enough; full debug information doubles the time of a build.
target_compile_options(farview_options INTERFACE $<$<CONFIG:RelWithDebInfo>:-g1>)
target_include_directories(farview_options INTERFACE ${CMAKE_SOURCE_DIR})
if(FARVIEW_SANITIZE)
  target_compile_options(farview_options INTERFACE -fsanitize=address,undefined
                         -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(farview_options INTERFACE -fsanitize=address,undefined)
endif()
if(FARVIEW_FUZZERS)
  target_compile_options(farview_options INTERFACE -fsanitize=fuzzer-no-link,address,undefined
                         -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(farview_options INTERFACE -fsanitize=address,undefined)
endif()

# farview_library(NAME SOURCES ... [LINK ...] [QT])
function(farview_library NAME)
  cmake_parse_arguments(ARG "QT" "" "SOURCES;LINK" ${ARGN})
  add_library(${NAME} STATIC ${ARG_SOURCES})
  target_link_libraries(${NAME} PUBLIC farview_options ${ARG_LINK})
  if(ARG_QT)
    set_target_properties(${NAME} PROPERTIES AUTOMOC ON)
  endif()
endfunction()

# farview_program(NAME SOURCES ... [LINK ...] [QT])
function(farview_program NAME)
  cmake_parse_arguments(ARG "QT" "" "SOURCES;LINK" ${ARGN})
  add_executable(${NAME} ${ARG_SOURCES})
  target_link_libraries(${NAME} PRIVATE farview_options ${ARG_LINK})
  if(ARG_QT)
    set_target_properties(${NAME} PROPERTIES AUTOMOC ON)
  endif()
endfunction()

# farview_test(NAME SOURCES ... [LINK ...] [LABELS ...] [TIMEOUT seconds] [QT] [OWN_MAIN])
# A GoogleTest program; each of its tests becomes one of ctest's. OWN_MAIN: the sources bring a main().
function(farview_test NAME)
  cmake_parse_arguments(ARG "QT;OWN_MAIN" "TIMEOUT" "SOURCES;LINK;LABELS" ${ARGN})
  add_executable(${NAME} ${ARG_SOURCES})
  target_link_libraries(${NAME} PRIVATE farview_options ${ARG_LINK} GTest::gmock)
  if(NOT ARG_OWN_MAIN)
    target_link_libraries(${NAME} PRIVATE GTest::gtest_main)
  endif()
  set_target_properties(${NAME} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  # The code under test is built as users get it; optimising the tests themselves only costs time.
  target_compile_options(${NAME} PRIVATE -O0)
  if(ARG_QT)
    set_target_properties(${NAME} PROPERTIES AUTOMOC ON)
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 60)
  endif()
  if(FARVIEW_SANITIZE)
    # Programs are ten times as large then, and slower: some tests copy, pack and start them.
    math(EXPR ARG_TIMEOUT "5 * ${ARG_TIMEOUT}")
  endif()
  gtest_discover_tests(${NAME} DISCOVERY_MODE PRE_TEST TEST_PREFIX "${NAME}."
                       PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${ARG_LABELS}")
endfunction()
