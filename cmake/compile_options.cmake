# ormacon_options: what every target of this project is compiled and linked with. The libraries pass it on to whatever
# links them; a target without one links it directly.
add_library(ormacon_options INTERFACE)
target_include_directories(ormacon_options INTERFACE "${PROJECT_SOURCE_DIR}")
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)

set(ORMACON_OUTPUT "${CMAKE_BINARY_DIR}/bin" CACHE PATH "Where programs and libraries are put")
option(ORMACON_UBSAN "Trap on undefined behaviour" OFF)
option(ORMACON_COVERAGE "Note which lines and branches have run" OFF)

target_compile_definitions(ormacon_options INTERFACE
  UNICODE _UNICODE _WIN32_WINNT=0x0A00 WIN32_LEAN_AND_MEAN NOMINMAX
  BOOST_ALL_NO_LIB BOOST_BIND_GLOBAL_PLACEHOLDERS BOOST_SYSTEM_USE_UTF8)
# What guards the memory of the program: also of the libraries that scripts/setup.sh builds.
file(STRINGS "${PROJECT_SOURCE_DIR}/cmake/hardening.txt" hardening)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/cmake/hardening.txt")
target_compile_options(ormacon_options INTERFACE -Wall -Wextra -Wconversion -Wshadow ${hardening})
target_link_options(ormacon_options INTERFACE
  -static -fstack-protector-strong -Wl,--dynamicbase,--nxcompat,--high-entropy-va)
# The shipped files do not depend on when and in which folder they are built. Debuggers find the sources when they are
# started in the folder of the project.
target_link_options(ormacon_options INTERFACE -Wl,--no-insert-timestamp)
# Wine maps a program whose sections are aligned like pages; any other it reads whole at every start.
target_link_options(ormacon_options INTERFACE -Wl,--file-alignment,4096)
if(CMAKE_BUILD_TYPE STREQUAL "Release")
  target_compile_options(ormacon_options INTERFACE "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.")
  foreach(folder ${CMAKE_CXX_IMPLICIT_INCLUDE_DIRECTORIES})
    target_compile_options(ormacon_options INTERFACE "-fmacro-prefix-map=${folder}/=")
  endforeach()
endif()
if(ORMACON_UBSAN)
  target_compile_options(ormacon_options INTERFACE -fsanitize=undefined -fsanitize-undefined-trap-on-error)
endif()
if(ORMACON_COVERAGE)
  target_compile_options(ormacon_options INTERFACE -fprofile-arcs -ftest-coverage -fprofile-abs-path)
  target_link_options(ormacon_options INTERFACE -fprofile-arcs)
endif()

# ormacon_library(NAME SOURCES... LINK libraries...): a static library of one folder.
function(ormacon_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
  add_library(${name} STATIC ${arg_SOURCES})
  target_link_libraries(${name} PUBLIC ormacon_options ${arg_LINK})
endfunction()
