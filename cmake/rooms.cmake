# zeb_room(NAME [PURE file...] [PLATFORM file...] [LINK library...])
#
# One room of the house as a static library. PURE files include no Windows header and are built everywhere; PLATFORM files
# are built for Windows only. A room that has nothing to build is an empty one, so that others can link it all the same.
function(zeb_room NAME)
  cmake_parse_arguments(ROOM "" "" "PURE;PLATFORM;LINK" ${ARGN})
  set(sources ${ROOM_PURE})
  if(WIN32)
    list(APPEND sources ${ROOM_PLATFORM})
  endif()
  if(NOT sources)
    add_library(${NAME} INTERFACE)
    return()
  endif()
  add_library(${NAME} STATIC ${sources})
  target_link_libraries(${NAME} PUBLIC zeb_options ${ROOM_LINK})
endfunction()

# zeb_product(TARGET): a program or library of the product goes to the common folder.
function(zeb_product TARGET)
  set_target_properties(${TARGET} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${ZEB_BIN_DIR}")
endfunction()
