# What `cmake --install` puts where. The tree may be moved as a whole afterwards: everything in it finds the rest from
# where it lies itself. Component `runtime` is what a device needs, `development` what a host is built with.
include(CMakePackageConfigHelpers)

install(TARGETS QuellaroHalvo EXPORT QuellaroHalvo
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
# Not ${CMAKE_INSTALL_DATADIR}: the library looks for its bundle in share, above the directory it lies in.
install(DIRECTORY ${CMAKE_BINARY_DIR}/share/quellaro-halvo DESTINATION share COMPONENT runtime)

install(DIRECTORY ${CMAKE_BINARY_DIR}/include/QuellaroHalvo DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

set(QUELLARO_PACKAGE_DIRECTORY ${CMAKE_INSTALL_LIBDIR}/cmake/QuellaroHalvo)
install(EXPORT QuellaroHalvo NAMESPACE QuellaroHalvo:: FILE QuellaroHalvoTargets.cmake
  DESTINATION ${QUELLARO_PACKAGE_DIRECTORY} COMPONENT development)
configure_package_config_file(cmake/QuellaroHalvoConfig.cmake.in ${CMAKE_BINARY_DIR}/QuellaroHalvoConfig.cmake
  INSTALL_DESTINATION ${QUELLARO_PACKAGE_DIRECTORY} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/QuellaroHalvoConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/QuellaroHalvoConfig.cmake ${CMAKE_BINARY_DIR}/QuellaroHalvoConfigVersion.cmake
  DESTINATION ${QUELLARO_PACKAGE_DIRECTORY} COMPONENT development)

file(RELATIVE_PATH QUELLARO_PREFIX_FROM_PC /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/quellaro-halvo.pc.in ${CMAKE_BINARY_DIR}/quellaro-halvo.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/quellaro-halvo.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

install(TARGETS halvo RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
find_program(GZIP gzip REQUIRED)
add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/halvo.1.gz DEPENDS ${PROJECT_SOURCE_DIR}/tools/halvo/halvo.1 VERBATIM
  COMMAND ${GZIP} -9nc ${PROJECT_SOURCE_DIR}/tools/halvo/halvo.1 > ${CMAKE_BINARY_DIR}/halvo.1.gz)
add_custom_target(halvo_manual ALL DEPENDS ${CMAKE_BINARY_DIR}/halvo.1.gz)
install(FILES ${CMAKE_BINARY_DIR}/halvo.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
install(FILES tools/halvo/halvo.bash RENAME halvo COMPONENT tool
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
