#include "picture/frame_times.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace halvo {

using namespace quellaro;

std::optional<std::size_t> FrameTimes::frameAt(double seconds) const {
  std::optional<std::size_t> seen;
  for (std::size_t i = 0; i < starts.size(); ++i)
    if (starts[i] && *starts[i] <= seconds && (!seen || *starts[i] >= *starts[*seen])) seen = i;
  return seen;
}

// The running total that the animation view keeps: a frame's time ends it and brings up the next one.
FrameTimes timesOf(const QLHalvoSDKConfig& config, std::size_t frames) {
  constexpr double kMillisecondsPerSecond = 1000;
  FrameTimes times;
  times.starts.resize(frames);
  const double delay = config.animationDelayInMillis / kMillisecondsPerSecond;
  times.starts[0] = delay;
  double total = 0;
  for (std::size_t i = 0; i < frames; ++i) {
    const auto entry = config.frameTime.find("Frame_" + std::to_string(i + 1));
    if (entry == config.frameTime.end()) continue;
    total += entry->second / kMillisecondsPerSecond;
    if (i + 1 < frames && std::isfinite(total)) times.starts[i + 1] = delay + total;
  }
  times.end = std::isfinite(total) ? delay + std::max(0.0, total) : delay;
  for (const auto& start : times.starts) times.end = std::max(times.end, start.value_or(0));
  return times;
}

}  // namespace halvo
