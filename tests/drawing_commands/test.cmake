pkg_check_modules(TEST_CAIRO REQUIRED IMPORTED_TARGET cairo)
    target_link_libraries(drawing_commands_test PRIVATE PkgConfig::TEST_CAIRO)
