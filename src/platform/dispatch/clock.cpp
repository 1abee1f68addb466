#include "platform/dispatch/clock.h"

#include <atomic>
#include <chrono>

namespace quellaro {

namespace {
std::atomic<const Clock*> replacedWallClock{nullptr};
}

double MonotonicClock::now() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double SystemWallClock::now() const {
  return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

void setWallClock(const Clock* clock) { replacedWallClock = clock; }

double secondsSince1970() {
  const Clock* replaced = replacedWallClock;
  return replaced != nullptr ? replaced->now() : SystemWallClock{}.now();
}

}  // namespace quellaro
