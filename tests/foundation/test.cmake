# Two mature parsers that ours is compared with.
pkg_check_modules(XML_ORACLES REQUIRED IMPORTED_TARGET expat libxml-2.0)
target_link_libraries(foundation_test PRIVATE PkgConfig::XML_ORACLES)
