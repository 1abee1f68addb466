pkg_check_modules(TEST_X11 REQUIRED IMPORTED_TARGET x11)
target_link_libraries(halvo_test PRIVATE PkgConfig::TEST_X11 halvo_commands)
