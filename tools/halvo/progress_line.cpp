#include "progress_line.h"

#include <unistd.h>

#include <cstdio>
#include <utility>

namespace halvo {

ProgressLine::ProgressLine(std::string command) : command_(std::move(command)), isShown_(isatty(STDERR_FILENO) == 1) {}

ProgressLine::~ProgressLine() {
  if (isWritten_) std::fputs("\r\033[K", stderr);
}

void ProgressLine::show(std::size_t framesDone, std::size_t frames) {
  if (!isShown_ || Clock::now() - last_ < std::chrono::milliseconds(500)) return;
  last_ = Clock::now();
  isWritten_ = true;
  std::fprintf(stderr, "\rhalvo %s: frame %zu of %zu", command_.c_str(), framesDone, frames);
}

}  // namespace halvo
