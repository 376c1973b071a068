# `cmake --install` gives headers, library, import library and a CMake package.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS qxcore EXPORT qxcoreTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT qxcoreTargets NAMESPACE qxcore:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qxcore)
configure_package_config_file(cmake/qxcoreConfig.cmake.in ${PROJECT_BINARY_DIR}/qxcoreConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qxcore)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/qxcoreConfigVersion.cmake COMPATIBILITY
  SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/qxcoreConfig.cmake
  ${PROJECT_BINARY_DIR}/qxcoreConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qxcore)
