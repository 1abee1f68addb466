pkg_check_modules(TEST_SOUND REQUIRED IMPORTED_TARGET sndfile libebur128)
target_include_directories(import_test PRIVATE ${PROJECT_SOURCE_DIR}/tools/halvo)
target_link_libraries(import_test PRIVATE PkgConfig::TEST_SOUND)
# The tool as it is where its parts are missing.
add_executable(halvo_without_import ${PROJECT_SOURCE_DIR}/tools/halvo/main.cpp)
target_link_libraries(halvo_without_import PRIVATE halvo_commands halvo_preview halvo_import_absent)
target_compile_definitions(import_test PRIVATE QUELLARO_TOOL_WITHOUT_IMPORT="$<TARGET_FILE:halvo_without_import>")
add_dependencies(import_test halvo_without_import)
