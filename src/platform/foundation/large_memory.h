#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <cstdint>

namespace quellaro {

// Asks for large pages behind memory of many megabytes that is about to be written for the first time. Where the
// system grants them, tens of thousands of page faults become a few, which are half of what reading a large file costs.
// Only a hint: small memory and other systems are left as they are.
inline void preferLargePages(void* start, std::size_t bytes) {
#ifdef MADV_HUGEPAGE
  constexpr std::uintptr_t kLargePage = std::uintptr_t{2} << 20;
  const auto address = reinterpret_cast<std::uintptr_t>(start);
  const std::uintptr_t first = (address + kLargePage - 1) / kLargePage * kLargePage;
  const std::uintptr_t last = (address + bytes) / kLargePage * kLargePage;
  if (first < last) madvise(static_cast<char*>(start) + (first - address), last - first, MADV_HUGEPAGE);
#endif
}

// Gives the pages behind memory that nobody needs any more back to the system, while the memory itself stays allocated
// with undefined content. Only a hint, too.
inline void giveBackPages(void* start, std::size_t bytes) {
  constexpr std::uintptr_t kPage = 4096;
  const auto address = reinterpret_cast<std::uintptr_t>(start);
  const std::uintptr_t first = (address + kPage - 1) / kPage * kPage;
  const std::uintptr_t last = (address + bytes) / kPage * kPage;
  if (first < last) madvise(static_cast<char*>(start) + (first - address), last - first, MADV_DONTNEED);
}

}  // namespace quellaro
