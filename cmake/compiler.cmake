# One set of compiler rules for everything in the house.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
# No asserts-off surprises: a release build and a debug build answer alike.
set(CMAKE_CXX_FLAGS_RELEASE "-O2")
if(QUELLARO_QUICK)
  set(CMAKE_CXX_FLAGS_RELEASE "-O1")
endif()
# The sanitized builds: quick to make, and with lines in their reports.
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O1 -g1")

# The same arithmetic on every machine: no fused multiply-add behind our back.
add_compile_options(-ffp-contract=off)
# Where pointers have 32 bits, files and dates beyond 2 GB and the year 2038 all the same.
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  add_compile_definitions(_FILE_OFFSET_BITS=64 _TIME_BITS=64)
endif()
# So that the linker can leave out what nobody calls.
add_compile_options(-ffunction-sections -fdata-sections)
# A warning stops only those who develop (CMakePresets.json): a newer compiler's opinion must not stop anybody else.
if(NOT QUELLARO_QUICK)
  add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow)
endif()
if(QUELLARO_SANITIZE)
  add_compile_options(-fsanitize=${QUELLARO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  if(QUELLARO_SANITIZE MATCHES "undefined")
    # This check opens a pipe to look at an object, and takes an object for broken when there are no descriptors left.
    add_compile_options(-fno-sanitize=vptr)
  endif()
  # The code that a sanitizer adds makes this warning wrong about the standard library's own.
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  add_link_options(-fsanitize=${QUELLARO_SANITIZE})
endif()

# What makes a fault stop the program before it can be made use of. The library's stack is guarded where it holds arrays of
# characters; wherever it holds any array, or an address is taken, would cost it 16 KB.
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
set(QUELLARO_HARDENING "")
set(QUELLARO_HARDENING_STRONG "")
if(CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT QUELLARO_SANITIZE)
  set(QUELLARO_HARDENING -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector)
  set(QUELLARO_HARDENING_STRONG -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector-strong)
endif()

# What nearly every source includes; a quick build reads it once.
set(QUELLARO_COMMON_HEADERS <algorithm> <array> <cmath> <cstdint> <functional> <map> <memory> <mutex> <optional> <string>
  <string_view> <utility> <vector>)
