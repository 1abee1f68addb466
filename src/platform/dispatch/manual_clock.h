#pragma once

#include <atomic>

#include "platform/dispatch/clock.h"

namespace quellaro {

// A clock that stands still until somebody sets it.
class ManualClock final : public Clock {
 public:
  explicit ManualClock(double start = 0) : now_(start) {}
  double now() const override { return now_; }
  bool isRealTime() const override { return false; }
  void set(double now) { now_ = now; }
  void advance(double seconds) { now_ = now_ + seconds; }

 private:
  std::atomic<double> now_;
};

}  // namespace quellaro
