pkg_check_modules(TEST_CAIRO REQUIRED IMPORTED_TARGET cairo)
target_link_libraries(svg_test PRIVATE PkgConfig::TEST_CAIRO)
target_compile_definitions(svg_test PRIVATE QUELLARO_PICTURES="${CMAKE_BINARY_DIR}/pictures")
