# What `cmake --install` lays down: library, headers, CMake package, pkg-config file, licence. The CMake package and the pkg-config
# file find the rest from where they lie, so that the tree may be moved, or installed with --prefix.
include(CMakePackageConfigHelpers)

set(VELORIM_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/VelorimRTL)

install(TARGETS VelorimRTL EXPORT VelorimRTLTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/velorim DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        FILES_MATCHING PATTERN *.h)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})

install(EXPORT VelorimRTLTargets NAMESPACE VelorimRTL:: DESTINATION ${VELORIM_INSTALL_CMAKEDIR})
configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/VelorimRTLConfig.cmake.in ${PROJECT_BINARY_DIR}/VelorimRTLConfig.cmake
  INSTALL_DESTINATION ${VELORIM_INSTALL_CMAKEDIR} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VelorimRTLConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VelorimRTLConfig.cmake ${PROJECT_BINARY_DIR}/VelorimRTLConfigVersion.cmake
        DESTINATION ${VELORIM_INSTALL_CMAKEDIR})

set(VELORIM_INSTALL_PKGCONFIGDIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(VELORIM_PKGCONFIG_PREFIX ${CMAKE_INSTALL_PREFIX})
else()
  file(RELATIVE_PATH VELORIM_PKGCONFIG_PREFIX /${VELORIM_INSTALL_PKGCONFIGDIR} /)
  string(REGEX REPLACE "/$" "" VELORIM_PKGCONFIG_PREFIX "\${pcfiledir}/${VELORIM_PKGCONFIG_PREFIX}")
endif()
foreach(dir LIBDIR INCLUDEDIR)
  if(IS_ABSOLUTE "${CMAKE_INSTALL_${dir}}")
    set(VELORIM_PKGCONFIG_${dir} ${CMAKE_INSTALL_${dir}})
  else()
    set(VELORIM_PKGCONFIG_${dir} "\${prefix}/${CMAKE_INSTALL_${dir}}")
  endif()
endforeach()
configure_file(${PROJECT_SOURCE_DIR}/cmake/velorimrtl.pc.in ${PROJECT_BINARY_DIR}/velorimrtl.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/velorimrtl.pc DESTINATION ${VELORIM_INSTALL_PKGCONFIGDIR})
