find_package(PNG REQUIRED)
target_link_libraries(sheet_test PRIVATE PNG::PNG)
