#include "support/hardship/failing_memory.h"

#include <pthread.h>

#include <atomic>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

std::atomic<long> left = LONG_MAX;

std::atomic<pthread_t> tested;
std::atomic<bool> onEveryThread;

bool isTested() {
  char name[16] = "";
  return onEveryThread || pthread_equal(tested, pthread_self()) != 0 ||
         (pthread_getname_np(pthread_self(), name, sizeof name) == 0 && std::strcmp(name, "URLSession") == 0);
}

void* allocate(std::size_t size, std::size_t alignment = __STDCPP_DEFAULT_NEW_ALIGNMENT__) noexcept {
  if (left != LONG_MAX && isTested() && left-- == 0) return nullptr;
  const std::size_t room = (size + alignment - 1) / alignment * alignment;
  return std::aligned_alloc(alignment, room == 0 ? alignment : room);
}

void* orThrow(void* memory) {
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

// These stand before the standard library's, whose arrays come here too.
#pragma GCC visibility push(default)
void* operator new(std::size_t size) { return orThrow(allocate(size)); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  return orThrow(allocate(size, static_cast<std::size_t>(alignment)));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
#pragma GCC visibility pop

namespace quellaro {

FailingAllocation::FailingAllocation(long others, FailingOn threads) {
  tested = pthread_self();
  onEveryThread = threads == FailingOn::everyThread;
  left = others;
}

bool FailingAllocation::end() { return left.exchange(LONG_MAX) < 0; }

}  // namespace quellaro
