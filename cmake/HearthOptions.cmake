# Switches of the build and the flags that every target of ours shares.
option(BUILD_SHARED_LIBS "Build shared libraries" OFF)
option(HEARTH_CLI "Build the command line tool" ${PROJECT_IS_TOP_LEVEL})
option(HEARTH_TESTS "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(HEARTH_BENCH "Build the benchmarks" OFF)
option(HEARTH_FUZZ "Build the fuzz targets (clang only)" OFF)
option(HEARTH_INSTALL "Make install rules" ${PROJECT_IS_TOP_LEVEL})
option(HEARTH_NET "Build hearth::net, the HTTP client (libcurl and OpenSSL)" ON)
option(HEARTH_MIMALLOC "Take the larger blocks of trees and strings from mimalloc" ON)
option(HEARTH_PAGES "Take the small blocks of trees and strings from our own pages" ON)
option(HEARTH_WERROR "Treat warnings as errors" OFF)
set(HEARTH_SANITIZE "" CACHE STRING "Sanitizers, as for -fsanitize (address,undefined or thread)")

if(NOT CMAKE_BUILD_TYPE AND PROJECT_IS_TOP_LEVEL)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "" FORCE)
endif()

find_program(HEARTH_CCACHE ccache)
if(HEARTH_CCACHE AND PROJECT_IS_TOP_LEVEL AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${HEARTH_CCACHE})
endif()

add_library(hearth_flags INTERFACE)
target_compile_features(hearth_flags INTERFACE cxx_std_20)
target_compile_options(hearth_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
  -Wnon-virtual-dtor -Woverloaded-virtual $<$<BOOL:${HEARTH_WERROR}>:-Werror>)
# g++ 12 at -O3 sees overlapping copies in `"literal" + std::string()`. The tools of clang, which do not know the warning,
# read the flags of other builds.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(hearth_flags INTERFACE $<$<CONFIG:Release>:-Wno-restrict>)
endif()
if(HEARTH_SANITIZE)
  target_compile_options(hearth_flags INTERFACE -fsanitize=${HEARTH_SANITIZE} -fno-omit-frame-pointer
    -fno-sanitize-recover=all)
  target_link_options(hearth_flags INTERFACE -fsanitize=${HEARTH_SANITIZE})
endif()
if(HEARTH_FUZZ)
  target_compile_options(hearth_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()
