#pragma once

namespace quellaro {

// Lets one allocation fail: the one that comes after so many others, on this thread and the network's, counted from
// here. Whoever plays the network in a test is spared.
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
