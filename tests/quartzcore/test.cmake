pkg_check_modules(TEST_CAIRO REQUIRED IMPORTED_TARGET cairo)
target_link_libraries(quartzcore_test PRIVATE PkgConfig::TEST_CAIRO)
target_compile_definitions(quartzcore_test PRIVATE QUELLARO_PICTURES="${CMAKE_BINARY_DIR}/pictures")
