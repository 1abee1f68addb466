pkg_check_modules(TEST_CAIRO REQUIRED IMPORTED_TARGET cairo)
target_sources(drawing_commands_test PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/quartzcore/pictures.cpp)
target_link_libraries(drawing_commands_test PRIVATE PkgConfig::TEST_CAIRO)
target_compile_definitions(drawing_commands_test PRIVATE QUELLARO_PICTURES="${CMAKE_BINARY_DIR}/pictures")
