# Warnings are errors in all of the project's own code. The generated stubs, which are C, are not that.
add_library(zeb_options INTERFACE)
target_compile_options(zeb_options INTERFACE "$<$<COMPILE_LANGUAGE:CXX>:-Wall;-Wextra;-Wpedantic;-Werror;-Wshadow\
;-Wconversion;-Wsign-conversion;-Wnon-virtual-dtor;-Woverloaded-virtual;-Wundef>")
target_include_directories(zeb_options INTERFACE ${CMAKE_SOURCE_DIR})

if(WIN32)
  target_compile_definitions(zeb_options INTERFACE
    UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX WINVER=0x0601 _WIN32_WINNT=0x0601)
  # The platform's interfaces look at one object through several types.
  target_compile_options(zeb_options INTERFACE -fno-strict-aliasing)
  # Nothing but the platform's own libraries is needed at run time.
  add_link_options(-static)
endif()

if(ZEB_SANITIZE)
  add_compile_options(-fsanitize=${ZEB_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ZEB_SANITIZE})
endif()

# MinGW has no run-time library for the sanitizers: undefined behaviour ends the program where it happens.
if(ZEB_CHECKED)
  add_compile_options("$<$<COMPILE_LANGUAGE:CXX>:-fsanitize=undefined;-fno-sanitize=vptr;-fsanitize-undefined-trap-on-error>")
  add_compile_definitions("$<$<COMPILE_LANGUAGE:CXX>:_GLIBCXX_ASSERTIONS;_GLIBCXX_DEBUG>")
endif()

if(ZEB_COVERAGE)
  add_compile_options(-fprofile-instr-generate -fcoverage-mapping)
  add_link_options(-fprofile-instr-generate)
endif()
