# The compressor makes what the session has to decode.
find_package(ZLIB REQUIRED)
target_link_libraries(url_session_test PRIVATE ZLIB::ZLIB)
