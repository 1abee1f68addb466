#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "sheet/sheet_source.h"

namespace halvo {

// Which frame of a cue is seen when, over and over.
class LoopTimes {
 public:
  struct Step {
    double start = 0;
    std::size_t frame = 0;
  };

  LoopTimes() = default;
  // Of a play that lasts so many seconds; 0: nothing ever changes. A last frame that no time would be left for gets
  // some: without an end of its own it stays for ever.
  LoopTimes(const FrameTimes& times, double duration);

  double duration() const { return duration_; }
  // In the order in which they come; frames that are never seen have none.
  const std::vector<Step>& steps() const { return steps_; }
  double endOf(std::size_t step) const { return step + 1 < steps_.size() ? steps_[step + 1].start : duration_; }
  // The step that is seen at that time; nothing before the first one.
  std::optional<std::size_t> stepAt(double seconds) const;
  // The step of that frame, or of the last one before it that is seen.
  std::optional<std::size_t> stepOf(std::size_t frame) const;

 private:
  std::vector<Step> steps_;
  double duration_ = 0;
};

}  // namespace halvo
