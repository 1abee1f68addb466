# How frames compare with their sources: for the tests and for scripts/import-fidelity.
target_sources(import_art_test PRIVATE import_art/fidelity.cpp)
target_link_libraries(import_art_test PRIVATE halvo_art halvo_commands)
add_executable(import_fidelity EXCLUDE_FROM_ALL import_art/import_fidelity.cpp import_art/fidelity.cpp)
target_include_directories(import_fidelity PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_compile_options(import_fidelity PRIVATE -O1)
target_link_libraries(import_fidelity PRIVATE halvo_art halvo_commands)
