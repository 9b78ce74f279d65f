# zeb_test(NAME source... [LINK library...])
#
# One test program, which is one entry of ctest: under Wine a process start costs more than most tests.
find_path(ZEB_GOOGLETEST CMakeLists.txt PATHS /usr/src/googletest NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH
  DOC "Sources of GoogleTest (Debian's package googletest)")

if(ZEB_GOOGLETEST)
  set(BUILD_GMOCK ON CACHE BOOL "" FORCE)
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  add_subdirectory(${ZEB_GOOGLETEST} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
endif()

function(zeb_test NAME)
  cmake_parse_arguments(TEST "" "" "LINK" ${ARGN})
  if(NOT TARGET gmock_main)
    # On Debian tests are run, and a run without these would look like one in which they pass.
    if(CMAKE_HOST_UNIX)
      message(FATAL_ERROR "${NAME} needs the sources of GoogleTest: apt install googletest")
    endif()
    message(STATUS "${NAME} is left out: the sources of GoogleTest are not on this machine")
    return()
  endif()
  add_executable(${NAME} ${TEST_UNPARSED_ARGUMENTS})
  target_link_libraries(${NAME} PRIVATE zeb_options ${TEST_LINK} gmock_main)
  set_target_properties(${NAME} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  add_test(NAME ${NAME} COMMAND ${NAME})
endfunction()
