target_sources(import_motion_test PRIVATE import_art/fidelity.cpp)
target_link_libraries(import_motion_test PRIVATE halvo_import halvo_motion halvo_art halvo_commands)
target_compile_definitions(import_motion_test PRIVATE QUELLARO_SAMPLE="${PROJECT_SOURCE_DIR}/examples/motion/sunrise.json")
