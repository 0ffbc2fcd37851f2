# Compiler settings shared by every target, and the two functions that all floors are declared with.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_COLOR_DIAGNOSTICS ON)

find_program(ORVANE_CCACHE ccache)
if(ORVANE_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${ORVANE_CCACHE})
endif()
find_program(ORVANE_MOLD mold)
if(ORVANE_MOLD)
  add_link_options(-fuse-ld=mold)
endif()

# No contraction: a pixel's value must not depend on which loop the compiler fused.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wcast-align -Wunused
                    -Werror -ffp-contract=off -fno-math-errno)

set(ORVANE_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize takes them")
if(ORVANE_SANITIZE)
  add_compile_options(-fsanitize=${ORVANE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ORVANE_SANITIZE})
endif()

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(GTest REQUIRED)
include(GoogleTest)

# orvane_library(NAME SOURCES ... LINKS ... PRIVATE_LINKS ...)
# A floor: its include path is its own folder and those of the libraries that it links.
function(orvane_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${arg_LINKS} PRIVATE ${arg_PRIVATE_LINKS})
endfunction()

# orvane_tests(LIBRARY SOURCES ... LINKS ...)
# The test program of one library, "<LIBRARY>Tests": it links that library and those below it.
function(orvane_tests library)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${library}Tests ${arg_SOURCES})
  target_link_libraries(${library}Tests PRIVATE ${library} ${arg_LINKS} GTest::gtest_main GTest::gmock)
  gtest_discover_tests(${library}Tests DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
endfunction()
