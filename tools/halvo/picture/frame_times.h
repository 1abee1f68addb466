#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "assets/sdk_config.h"

namespace halvo {

// When the frames of a cue are on screen, in seconds from the start of the play.
struct FrameTimes {
  // Absent for a frame that never comes up, because the one before it has no time.
  std::vector<std::optional<double>> starts;
  double end = 0;

  // The index of the frame that is seen at that time; nothing before the first one.
  std::optional<std::size_t> frameAt(double seconds) const;
};

// Of so many frames, at least one.
FrameTimes timesOf(const quellaro::QLHalvoSDKConfig& config, std::size_t frames);

}  // namespace halvo
