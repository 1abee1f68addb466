# CPack gives a package with a library scripts that call ldconfig, whatever else it has; its trigger does that, once for
# all packages of an installation.
find_program(DPKG_DEB dpkg-deb REQUIRED)
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  if(NOT package MATCHES "/libquellarohalvo[0-9]+_[^/]*\\.deb$")
    continue()
  endif()
  set(unpacked ${CPACK_TEMPORARY_DIRECTORY}/without_scripts)
  file(REMOVE_RECURSE ${unpacked})
  execute_process(COMMAND ${DPKG_DEB} -R ${package} ${unpacked} COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE ${unpacked}/DEBIAN/postinst ${unpacked}/DEBIAN/postrm)
  execute_process(COMMAND ${DPKG_DEB} --root-owner-group -b ${unpacked} ${package} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE ${unpacked})
endforeach()
