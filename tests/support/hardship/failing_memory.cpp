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

bool isTested() {
  char name[16] = "";
  return pthread_equal(tested, pthread_self()) != 0 ||
         (pthread_getname_np(pthread_self(), name, sizeof name) == 0 && std::strcmp(name, "URLSession") == 0);
}

void* allocate(std::size_t size) noexcept {
  return left != LONG_MAX && isTested() && left-- == 0 ? nullptr : std::malloc(size);
}

}  // namespace

// These stand before the standard library's.
#pragma GCC visibility push(default)
void* operator new(std::size_t size) {
  void* const memory = allocate(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
#pragma GCC visibility pop

namespace quellaro {

FailingAllocation::FailingAllocation(long others) {
  tested = pthread_self();
  left = others;
}

bool FailingAllocation::end() { return left.exchange(LONG_MAX) < 0; }

}  // namespace quellaro
