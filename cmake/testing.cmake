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
  # What is tested is optimized. The tests themselves would take twice as long to compile as they do.
  target_compile_options(${NAME} PRIVATE -O0)
  set_target_properties(${NAME} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  add_test(NAME ${NAME} COMMAND ${NAME})
endfunction()

# Behind the tests of a folder: divides them among the lanes, which run side by side while the entries of one lane run one behind
# the other. The names of the agent's pipes are fixed and some tests change the registry; under Wine both belong to a prefix, and
# each lane has one of its own (tools/wine-prefix.sh, which names as many).
function(zeb_divide_into_lanes)
  if(NOT WIN32)
    return()
  endif()
  set(lanes 1)
  if(CMAKE_CROSSCOMPILING)
    set(lanes 2)
  endif()
  get_property(entries DIRECTORY PROPERTY TESTS)
  foreach(entry IN LISTS entries)
    get_property(before GLOBAL PROPERTY ZEB_ENTRIES_IN_LANES)
    list(LENGTH before number)
    math(EXPR lane "${number} % ${lanes} + 1")
    set_property(GLOBAL APPEND PROPERTY ZEB_ENTRIES_IN_LANES ${entry})
    set_property(TEST ${entry} PROPERTY RESOURCE_LOCK lane${lane})
    if(lane GREATER 1)
      set_property(TEST ${entry} APPEND PROPERTY ENVIRONMENT ZEB_LANE=${lane})
    endif()
  endforeach()
endfunction()
