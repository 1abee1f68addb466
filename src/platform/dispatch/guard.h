#pragma once

#include <utility>

namespace quellaro {

// Undoes a change when its scope is left before keep(), the last step of what succeeds. The work must not throw.
template <class Work>
class Undo {
 public:
  explicit Undo(Work work) : work_(std::move(work)) {}
  Undo(const Undo&) = delete;
  Undo& operator=(const Undo&) = delete;
  ~Undo() {
    if (isArmed_) work_();
  }
  void keep() { isArmed_ = false; }
  bool isArmed() const { return isArmed_; }

 private:
  Work work_;
  bool isArmed_ = true;
};

// Does what must not keep anything else from happening, when memory is short least of all. Gives whether it was done.
template <class Work>
bool attempt(const Work& work) noexcept {
  try {
    work();
    return true;
  } catch (...) {
    return false;
  }
}

}  // namespace quellaro
