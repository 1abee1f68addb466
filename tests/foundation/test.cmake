# The mature parser that ours is compared with.
pkg_check_modules(EXPAT REQUIRED IMPORTED_TARGET expat)
target_link_libraries(foundation_test PRIVATE PkgConfig::EXPAT)
