# What stands before the system's own functions is linked into the programs that ask for it.
target_sources(assets_test PRIVATE
  ${CMAKE_CURRENT_SOURCE_DIR}/support/hardship/failing_changes.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/support/hardship/failing_memory.cpp)
# An operator's keys are made with what the library checks signatures with.
target_link_libraries(assets_test PRIVATE PkgConfig::QUELLARO_PLATFORM)
if(QUELLARO_SANITIZE)
  # A sanitizer's own memory is none of ours.
  target_compile_definitions(assets_test PRIVATE QUELLARO_SANITIZED)
endif()
