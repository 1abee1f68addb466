# `cpack -G DEB` makes four packages: what a device needs, what a host is built with, the tool, which alone wants a window
# system, and the Python package. Their components hold what `cmake --install` puts elsewhere (install.cmake), and the
# documents that Debian wants.
set(CPACK_PACKAGE_NAME quellaro-halvo)
set(CPACK_PACKAGE_CONTACT "QuellaroHalvo maintainers <quellaro-halvo@quellaro.invalid>")
set(CPACK_PACKAGE_VENDOR "Quellaro")
# The packages' own descriptions say everything.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL deb_runtime deb_development deb_tool deb_python)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(QUELLARO_DEBIAN_VERSION ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
set(QUELLARO_DEBIAN_CONTACT ${CPACK_PACKAGE_CONTACT})
set(debian ${CMAKE_CURRENT_LIST_DIR}/debian)
set(made ${CMAKE_BINARY_DIR}/debian)
configure_file(${debian}/changelog.in ${made}/changelog @ONLY)
# A host needs this version or a later one with the same first number.
file(WRITE ${made}/shlibs
  "libQuellaroHalvo ${PROJECT_VERSION_MAJOR} libquellarohalvo${PROJECT_VERSION_MAJOR} (>= ${PROJECT_VERSION})\n")
configure_file(${debian}/METADATA.in ${made}/METADATA @ONLY)
find_program(GZIP gzip REQUIRED)
add_custom_command(OUTPUT ${made}/changelog.Debian.gz ${made}/changelog.gz VERBATIM
  DEPENDS ${made}/changelog ${PROJECT_SOURCE_DIR}/CHANGELOG.md
  COMMAND ${GZIP} -9nc ${made}/changelog > ${made}/changelog.Debian.gz
  COMMAND ${GZIP} -9nc ${PROJECT_SOURCE_DIR}/CHANGELOG.md > ${made}/changelog.gz)
add_custom_target(debian_documents ALL DEPENDS ${made}/changelog.Debian.gz ${made}/changelog.gz)

# What each package has to have.
function(describe_package component name section machines description)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name} PARENT_SCOPE)
  # CPack has no variable for this field.
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION "${section}\nMulti-Arch: ${machines}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_DESCRIPTION ${description} PARENT_SCOPE)
  install(FILES ${debian}/copyright ${made}/changelog.Debian.gz ${made}/changelog.gz
    DESTINATION share/doc/${name} COMPONENT ${component} EXCLUDE_FROM_ALL)
  # They are not uploaded to Debian, so no wish there is fulfilled.
  file(WRITE ${made}/overrides/${name} "${name} binary: initial-upload-closes-no-bugs\n")
  install(FILES ${made}/overrides/${name} DESTINATION share/lintian/overrides COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction()

set(libdir ${CMAKE_INSTALL_LIBDIR})
if(CMAKE_LIBRARY_ARCHITECTURE)
  set(libdir lib/${CMAKE_LIBRARY_ARCHITECTURE})
endif()
install_library(${libdir} deb_runtime deb_development EXCLUDE_FROM_ALL)
set(runtime libquellarohalvo${PROJECT_VERSION_MAJOR})
set(exact_runtime "${runtime} (= ${QUELLARO_DEBIAN_VERSION})")
describe_package(deb_runtime ${runtime} libs same "short brand cue: sound, vector animation, haptics
A host application prepares a cue and plays it: a sound, an animation made
of SVG frames and a haptic pattern, together and on time. This package has
the shared library and the built-in cue.")
set(CPACK_DEBIAN_DEB_RUNTIME_PACKAGE_CONTROL_EXTRA "${debian}/triggers;${made}/shlibs")

describe_package(deb_development libquellarohalvo-dev libdevel same "short brand cue: what hosts are built with
Headers for C and C++ of the library that plays a short brand cue, with
what pkg-config and CMake want to know, documentation and whole hosts as
examples.")
set(CPACK_DEBIAN_DEB_DEVELOPMENT_PACKAGE_DEPENDS "${exact_runtime}")
set(documents share/doc/libquellarohalvo-dev)
install(DIRECTORY docs DESTINATION ${documents} COMPONENT deb_development EXCLUDE_FROM_ALL)
install(FILES README.md THIRD_PARTY.md DESTINATION ${documents} COMPONENT deb_development EXCLUDE_FROM_ALL)
install(DIRECTORY examples DESTINATION ${documents} COMPONENT deb_development EXCLUDE_FROM_ALL
  FILES_MATCHING PATTERN "*.c" PATTERN "*.cpp" PATTERN "*.py")

if(QUELLARO_TOOL)
  install_tool(deb_tool EXCLUDE_FROM_ALL)
  describe_package(deb_tool halvo utils foreign "makes, plays, draws, measures and publishes brand cues
Command-line host of the brand cue library: makes a cue of SVG files and a
sound, plays it in a window or in memory, draws its frames and contact
sheets, publishes new versions of it, and shows what is stored about plays.")
  # The built-in cue comes with the library.
  set(CPACK_DEBIAN_DEB_TOOL_PACKAGE_DEPENDS "${exact_runtime}")
else()
  list(REMOVE_ITEM CPACK_COMPONENTS_ALL deb_tool)
endif()

describe_package(deb_python python3-quellaro-halvo python foreign "short brand cue: the library for hosts in Python
Plays a short brand cue in a host written in Python: a typed package on
top of the shared library, with views into any buffer and with the loops
of asyncio, GLib and Qt.")
set(packages lib/python3/dist-packages)
install(DIRECTORY python/src/quellaro_halvo DESTINATION ${packages} COMPONENT deb_python EXCLUDE_FROM_ALL
  FILES_MATCHING PATTERN "*.py" PATTERN py.typed PATTERN __pycache__ EXCLUDE)
install(FILES ${made}/METADATA DESTINATION ${packages}/quellaro_halvo-${PROJECT_VERSION}.dist-info
  COMPONENT deb_python EXCLUDE_FROM_ALL)
install(DIRECTORY examples DESTINATION share/doc/python3-quellaro-halvo COMPONENT deb_python EXCLUDE_FROM_ALL
  FILES_MATCHING PATTERN "*.py")
set(CPACK_DEBIAN_DEB_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DEB_PYTHON_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEB_PYTHON_PACKAGE_DEPENDS "python3 (>= 3.11), ${runtime} (>= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEB_PYTHON_PACKAGE_SUGGESTS "python3-gi, gir1.2-gtk-4.0, python3-pyqt6, python3-cairo")
set(CPACK_DEBIAN_DEB_PYTHON_PACKAGE_CONTROL_EXTRA "${debian}/postinst;${debian}/prerm")

set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/package_leaves_ldconfig_to_its_trigger.cmake)

# The tool is packaged with all that it can do.
if(QUELLARO_TOOL AND NOT TARGET halvo_art)
  set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/package_without_import.cmake)
endif()

include(CPack)
