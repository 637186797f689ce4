# Build options and the flags of every target of the project.
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Release, Debug or RelWithDebInfo" FORCE)
endif()

option(VELORIM_BUILD_TESTS "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(VELORIM_BUILD_EXAMPLES "Build the examples" ${PROJECT_IS_TOP_LEVEL})
option(VELORIM_BUILD_BENCHMARKS "Build the benchmarks" OFF)
option(VELORIM_WERROR "Treat warnings as errors" ON)
set(VELORIM_ARCH native CACHE STRING "Processor to build for: native, x86-64-v2, x86-64-v3, x86-64-v4, armv8-a, ...")
set(VELORIM_SANITIZE "" CACHE STRING "Sanitizers to build with, such as address,undefined or thread; empty for none")
set_property(CACHE VELORIM_SANITIZE PROPERTY STRINGS "" "address,undefined" "thread")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_CXX_FLAGS_RELEASE "-O3 -DNDEBUG")
set(CMAKE_C_FLAGS_RELEASE "-O3 -DNDEBUG")

find_program(VELORIM_CCACHE ccache)
if(VELORIM_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_C_COMPILER_LAUNCHER ${VELORIM_CCACHE})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${VELORIM_CCACHE})
endif()

# Products and sums are never contracted on their own and no licence is given to change what a program says about exceptions:
# results must not depend on the loop that an element went through, and runs are judged by the exception flags.
add_library(velorim_build_flags INTERFACE)
target_compile_options(velorim_build_flags INTERFACE -march=${VELORIM_ARCH} -ffp-contract=off -fno-math-errno
                                                     -Wall -Wextra -Wshadow)
target_compile_options(velorim_build_flags INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  # clang deletes and reorders floating-point operations whose only effect is a flag unless it is told to keep them. It then
  # leaves some simd loops as they are and would warn of each.
  target_compile_options(velorim_build_flags INTERFACE -ffp-exception-behavior=maytrap -Wno-overriding-t-option
                                                       -Wno-pass-failed)
endif()
if(VELORIM_WERROR)
  target_compile_options(velorim_build_flags INTERFACE -Werror)
endif()
if(VELORIM_SANITIZE)
  target_compile_options(velorim_build_flags INTERFACE -fsanitize=${VELORIM_SANITIZE} -fno-omit-frame-pointer
                                                       -fno-sanitize-recover=all)
  target_link_options(velorim_build_flags INTERFACE -fsanitize=${VELORIM_SANITIZE})
endif()
if(CMAKE_BUILD_TYPE STREQUAL "Debug" OR VELORIM_SANITIZE)
  target_compile_definitions(velorim_build_flags INTERFACE VELORIM_DEBUG_CHECKS)
endif()
