#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace halvo {

// A line on standard error that is written over, on a terminal, for what takes longer than a moment. Gone with the
// object.
class ProgressLine {
 public:
  explicit ProgressLine(std::string command);
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  ~ProgressLine();

  void show(std::size_t framesDone, std::size_t frames);

 private:
  using Clock = std::chrono::steady_clock;

  std::string command_;
  bool isShown_;
  bool isWritten_ = false;
  Clock::time_point last_ = Clock::now();
};

}  // namespace halvo
