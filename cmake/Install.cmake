# What `cmake --install` lays down: library, headers, CMake package, pkg-config file.
include(CMakePackageConfigHelpers)
install(TARGETS VelorimRTL EXPORT VelorimRTLTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/velorim DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
