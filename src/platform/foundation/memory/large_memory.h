#pragma once

#include <sys/mman.h>
#include <unistd.h>

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
  // Not every machine's pages are of 4 KB, and the system would round the length up to whole ones.
  const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const auto address = reinterpret_cast<std::uintptr_t>(start);
  const std::uintptr_t first = (address + page - 1) / page * page;
  const std::uintptr_t last = (address + bytes) / page * page;
  if (first < last) madvise(static_cast<char*>(start) + (first - address), last - first, MADV_DONTNEED);
}

}  // namespace quellaro
