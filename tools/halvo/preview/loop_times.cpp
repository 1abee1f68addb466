#include "preview/loop_times.h"

#include <algorithm>

namespace halvo {

namespace {

// Seconds: sums of frame times, and of the time that passes, are not exact.
constexpr double kRounding = 1e-9;
constexpr double kLastFrame = 1;

}  // namespace

LoopTimes::LoopTimes(const FrameTimes& times, double duration) : duration_(duration) {
  for (std::size_t frame = 0; frame < times.starts.size(); ++frame)
    if (const auto& start = times.starts[frame]) steps_.push_back({std::max(0.0, *start), frame});
  std::stable_sort(steps_.begin(), steps_.end(), [](const Step& a, const Step& b) { return a.start < b.start; });
  // Of those that come up at the same time the last one is seen.
  std::vector<Step> seen;
  for (const Step& step : steps_) {
    if (!seen.empty() && step.start - seen.back().start <= kRounding) seen.pop_back();
    seen.push_back(step);
  }
  steps_ = std::move(seen);
  if (duration_ > 0 && !steps_.empty() && duration_ - steps_.back().start <= kRounding)
    duration_ = steps_.back().start + kLastFrame;
}

std::optional<std::size_t> LoopTimes::stepAt(double seconds) const {
  const auto after = std::upper_bound(steps_.begin(), steps_.end(), seconds + kRounding,
                                      [](double time, const Step& step) { return time < step.start; });
  if (after == steps_.begin()) return std::nullopt;
  return static_cast<std::size_t>(after - steps_.begin()) - 1;
}

std::optional<std::size_t> LoopTimes::stepOf(std::size_t frame) const {
  std::optional<std::size_t> best;
  for (std::size_t i = 0; i < steps_.size(); ++i)
    if (steps_[i].frame <= frame && (!best || steps_[i].frame >= steps_[*best].frame)) best = i;
  return best;
}

}  // namespace halvo
