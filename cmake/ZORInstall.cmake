# SPDX-License-Identifier: Apache-2.0
# The installed package: headers, the shared library, find_package(ZORFoundation CONFIG) and pkg-config.
include(CMakePackageConfigHelpers)

set(package_directory ${CMAKE_INSTALL_LIBDIR}/cmake/ZORFoundation)

install(TARGETS ZORFoundation EXPORT ZORFoundationTargets
  LIBRARY NAMELINK_COMPONENT Development
  FILE_SET HEADERS COMPONENT Development)
install(EXPORT ZORFoundationTargets
  NAMESPACE ZORFoundation:: DESTINATION ${package_directory} COMPONENT Development)

write_basic_package_version_file(ZORFoundationConfigVersion.cmake COMPATIBILITY SameMinorVersion)
configure_package_config_file(cmake/ZORFoundationConfig.cmake.in ZORFoundationConfig.cmake
  INSTALL_DESTINATION ${package_directory})
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/ZORFoundationConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/ZORFoundationConfigVersion.cmake
  DESTINATION ${package_directory} COMPONENT Development)

# From where the file lies: the Debian package is put elsewhere than CMAKE_INSTALL_PREFIX says.
file(RELATIVE_PATH includedir_from_pkgconfig
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_FULL_INCLUDEDIR})
configure_file(cmake/ZORFoundation.pc.in ZORFoundation.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/ZORFoundation.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT Development)

if(PROJECT_IS_TOP_LEVEL)
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGE_CONTACT "ZORFoundation maintainers")
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  include(CPack)
endif()
