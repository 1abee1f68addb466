#pragma once

namespace quellaro {

// While one lives, the n-th allocation made by operator new on any thread fails, the first being number 1. One at a
// time.
class FailingAllocation {
 public:
  explicit FailingAllocation(long number);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  // Whether it has come to that one.
  static bool hasFailed();
};

}  // namespace quellaro
