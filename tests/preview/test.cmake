pkg_check_modules(TEST_X11 REQUIRED IMPORTED_TARGET x11)
target_link_libraries(preview_test PRIVATE PkgConfig::TEST_X11 halvo_commands halvo_preview halvo_import halvo_motion halvo_art)
target_compile_definitions(preview_test PRIVATE QUELLARO_SAMPLE="${PROJECT_SOURCE_DIR}/examples/motion/sunrise.json")
