# What stands before the system's own functions is linked into the programs that ask for it.
target_sources(shortage_test PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/support/hardship/failing_memory.cpp)
