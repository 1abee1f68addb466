# What `cmake --install` puts where. The tree may be moved as a whole afterwards: everything in it finds the rest from
# where it lies itself. Component `runtime` is what a device needs, `development` what a host is built with. The packages
# have the same in components of their own, in the folder that Debian has for each kind of machine.
include(CMakePackageConfigHelpers)

# What finds a static library finds what that stands on, too.
set(QUELLARO_FIND_DEPENDENCIES "")
set(QUELLARO_PC_DEPENDENCIES "")
if(NOT BUILD_SHARED_LIBS)
  list(JOIN QUELLARO_PLATFORM_MODULES " " modules)
  string(CONCAT QUELLARO_FIND_DEPENDENCIES "include(CMakeFindDependencyMacro)\nfind_dependency(Threads)\n"
    "find_dependency(PkgConfig)\npkg_check_modules(QUELLARO_PLATFORM REQUIRED IMPORTED_TARGET ${modules})")
  set(QUELLARO_PC_DEPENDENCIES "Requires: ${modules}\nLibs.private: -lstdc++ -lm -pthread")
endif()

# Further arguments go to every rule.
function(install_library libdir runtime development)
  install(TARGETS QuellaroHalvo EXPORT QuellaroHalvo_${development}
    LIBRARY DESTINATION ${libdir} COMPONENT ${runtime} NAMELINK_COMPONENT ${development} ${ARGN}
    ARCHIVE DESTINATION ${libdir} COMPONENT ${development} ${ARGN})
  # Not ${CMAKE_INSTALL_DATADIR}: the library looks for its bundle in share, above the directory it lies in.
  install(DIRECTORY ${QUELLARO_BUNDLE}/ DESTINATION ${QUELLARO_DATA_DIRECTORY} COMPONENT ${runtime} ${ARGN})
  install(DIRECTORY ${CMAKE_BINARY_DIR}/include/QuellaroHalvo DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT ${development} ${ARGN})

  set(package_directory ${libdir}/cmake/QuellaroHalvo)
  set(made ${CMAKE_BINARY_DIR}/${development})
  install(EXPORT QuellaroHalvo_${development} NAMESPACE QuellaroHalvo:: FILE QuellaroHalvoTargets.cmake
    DESTINATION ${package_directory} COMPONENT ${development} ${ARGN})
  configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/QuellaroHalvoConfig.cmake.in ${made}/QuellaroHalvoConfig.cmake
    INSTALL_DESTINATION ${package_directory} NO_SET_AND_CHECK_MACRO)
  write_basic_package_version_file(${made}/QuellaroHalvoConfigVersion.cmake COMPATIBILITY SameMajorVersion)
  install(FILES ${made}/QuellaroHalvoConfig.cmake ${made}/QuellaroHalvoConfigVersion.cmake
    DESTINATION ${package_directory} COMPONENT ${development} ${ARGN})

  file(RELATIVE_PATH QUELLARO_PREFIX_FROM_PC /${libdir}/pkgconfig /)
  set(QUELLARO_LIBDIR ${libdir})
  configure_file(${PROJECT_SOURCE_DIR}/cmake/quellaro-halvo.pc.in ${made}/quellaro-halvo.pc @ONLY)
  install(FILES ${made}/quellaro-halvo.pc DESTINATION ${libdir}/pkgconfig COMPONENT ${development} ${ARGN})
endfunction()

function(install_tool component)
  install(TARGETS halvo RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${component} ${ARGN})
  install(FILES ${CMAKE_BINARY_DIR}/halvo.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${component} ${ARGN})
  install(FILES ${PROJECT_SOURCE_DIR}/tools/halvo/halvo.bash RENAME halvo COMPONENT ${component}
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions ${ARGN})
endfunction()

install_library(${CMAKE_INSTALL_LIBDIR} runtime development)
if(QUELLARO_TOOL)
  find_program(GZIP gzip REQUIRED)
  add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/halvo.1.gz DEPENDS ${PROJECT_SOURCE_DIR}/tools/halvo/halvo.1 VERBATIM
    COMMAND ${GZIP} -9nc ${PROJECT_SOURCE_DIR}/tools/halvo/halvo.1 > ${CMAKE_BINARY_DIR}/halvo.1.gz)
  add_custom_target(halvo_manual ALL DEPENDS ${CMAKE_BINARY_DIR}/halvo.1.gz)
  install_tool(tool)
endif()
