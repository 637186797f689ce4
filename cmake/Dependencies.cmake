# What the library itself needs: threads, OpenMP for the team, SLEEF for vector arithmetic.
find_package(Threads REQUIRED)
find_package(OpenMP REQUIRED COMPONENTS CXX)
find_path(SLEEF_INCLUDE_DIR sleef.h)
find_library(SLEEF_LIBRARY sleef)
if(NOT SLEEF_INCLUDE_DIR OR NOT SLEEF_LIBRARY)
  message(FATAL_ERROR "SLEEF was not found: install libsleef-dev, or run scripts/install-packages.")
endif()

add_library(velorim_dependencies INTERFACE)
target_include_directories(velorim_dependencies SYSTEM INTERFACE ${SLEEF_INCLUDE_DIR})
target_link_libraries(velorim_dependencies INTERFACE Threads::Threads OpenMP::OpenMP_CXX ${SLEEF_LIBRARY})
