#pragma once

namespace quellaro {

enum class FailingOn {
  testAndNetwork,  // whoever plays the network in a test is spared
  everyThread
};

// Lets one allocation fail: the one that comes after so many others, counted from here. One at a time.
class FailingAllocation {
 public:
  explicit FailingAllocation(long others, FailingOn threads = FailingOn::testAndNetwork);
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
  // Whether it has come.
  bool end();
  ~FailingAllocation() { end(); }
};

}  // namespace quellaro
