#include "shortage/failing_allocations.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

namespace {

// How many allocations are left, that which fails included; nothing fails from 0 on downwards.
std::atomic<long> left{0};
std::atomic<bool> failed{false};

void* allocate(std::size_t size, std::size_t alignment) {
  if (left > 0 && left.fetch_sub(1) == 1) {
    failed = true;
    return nullptr;
  }
  const std::size_t room = (size + alignment - 1) / alignment * alignment;
  return std::aligned_alloc(alignment, room == 0 ? alignment : room);
}

void* allocateOrThrow(std::size_t size, std::size_t alignment) {
  void* const memory = allocate(size, alignment);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

constexpr std::size_t kUsual = __STDCPP_DEFAULT_NEW_ALIGNMENT__;

}  // namespace

// NOLINTBEGIN(cppcoreguidelines-no-malloc,misc-new-delete-overloads)
#ifndef __clang__
// Under a sanitizer the compiler sees only half of each pair.
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif
void* operator new(std::size_t size) { return allocateOrThrow(size, kUsual); }
void* operator new[](std::size_t size) { return allocateOrThrow(size, kUsual); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  return allocateOrThrow(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size, kUsual); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size, kUsual); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
// NOLINTEND(cppcoreguidelines-no-malloc,misc-new-delete-overloads)

namespace quellaro {

FailingAllocation::FailingAllocation(long number) {
  failed = false;
  left = number;
}

FailingAllocation::~FailingAllocation() { left = 0; }

bool FailingAllocation::hasFailed() { return failed; }

TEST(FailingAllocation, FailsTheOneThatWasAskedForAndNoOther) {
  bool threw = false;
  {
    const FailingAllocation second(2);
    const auto first = std::make_unique<int>(1);
    try {
      const std::vector<int> refused(100);
    } catch (const std::bad_alloc&) {
      threw = true;
    }
    const auto third = std::make_unique<int>(3);
  }
  EXPECT_TRUE(threw);
  EXPECT_TRUE(FailingAllocation::hasFailed());
}

}  // namespace quellaro
