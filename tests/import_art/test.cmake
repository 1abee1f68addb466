target_link_libraries(import_art_test PRIVATE halvo_art halvo_commands)
# For scripts/import-fidelity.
add_executable(import_fidelity EXCLUDE_FROM_ALL import_art/import_fidelity.cpp)
target_compile_options(import_fidelity PRIVATE -O1)
target_link_libraries(import_fidelity PRIVATE halvo_art halvo_commands)
