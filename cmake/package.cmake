# `cpack -G DEB` makes three packages: what a device needs, what a host is built with, and the tool, which alone wants a
# window system.
set(CPACK_PACKAGE_NAME quellaro-halvo)
set(CPACK_PACKAGE_CONTACT "QuellaroHalvo maintainers <quellaro-halvo@quellaro.invalid>")
set(CPACK_PACKAGE_VENDOR "Quellaro")
# The packages' own descriptions say everything.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime development tool)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libquellarohalvo${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "short brand cue: sound, vector animation, haptics
A host application prepares a cue and plays it: a sound, an animation made
of SVG frames and a haptic pattern, together and on time. This package has
the shared library and the built-in cue.")

set(exact_runtime "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libquellarohalvo-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${exact_runtime}")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "short brand cue: what hosts are built with
Headers for C and C++ of the library that plays a short brand cue, with
what pkg-config and CMake want to know.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME halvo)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION utils)
# The built-in cue comes with the library.
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "${exact_runtime}")
set(CPACK_DEBIAN_TOOL_DESCRIPTION "makes, plays, draws, measures and publishes brand cues
Command-line host of the brand cue library: makes a cue of SVG files and a
sound, plays it in a window or in memory, draws its frames and contact
sheets, publishes new versions of it, and shows what is stored about plays.")

# The tool is packaged with all that it can do.
if(NOT TARGET halvo_art)
  set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/package_without_import.cmake)
endif()

include(CPack)
