# A mature parser that ours is compared with.
pkg_check_modules(XML_ORACLE REQUIRED IMPORTED_TARGET expat)
target_link_libraries(foundation_test PRIVATE PkgConfig::XML_ORACLE)
