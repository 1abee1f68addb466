pkg_check_modules(TEST_CAIRO REQUIRED IMPORTED_TARGET cairo)
target_sources(quartzcore_test PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/quartzcore/cairo_renderer.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/quartzcore/brute_force.cpp)
# Thousands of pictures of 256 samples a pixel.
set_source_files_properties(${CMAKE_CURRENT_SOURCE_DIR}/quartzcore/brute_force.cpp PROPERTIES COMPILE_OPTIONS -O2)
target_link_libraries(quartzcore_test PRIVATE PkgConfig::TEST_CAIRO)
target_compile_definitions(quartzcore_test PRIVATE QUELLARO_PICTURES="${CMAKE_BINARY_DIR}/pictures")
