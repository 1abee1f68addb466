#pragma once

namespace quellaro {

// Lets one allocation of the program fail: the one that comes after so many others, on any thread, counted from here.
class FailingAllocation {
 public:
  explicit FailingAllocation(long others);
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
  // Whether it has come.
  bool end();
  ~FailingAllocation() { end(); }
};

}  // namespace quellaro
