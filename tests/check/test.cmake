pkg_check_modules(TEST_CAIRO REQUIRED IMPORTED_TARGET cairo)
target_sources(check_test PRIVATE ${PROJECT_SOURCE_DIR}/tools/halvo/check/findings.cpp)
target_include_directories(check_test PRIVATE ${PROJECT_SOURCE_DIR}/tools/halvo)
target_link_libraries(check_test PRIVATE PkgConfig::TEST_CAIRO)
target_compile_definitions(check_test PRIVATE QUELLARO_PICTURES="${CMAKE_BINARY_DIR}/pictures"
  QUELLARO_AUTHORING_PAGE="${PROJECT_SOURCE_DIR}/docs/authoring.md")
