#pragma once

#include <cstdint>
#include <string>

#include "analytics/haptics_analytics.h"
#include "types/halvo_enums.h"

namespace quellaro {

// How one play came out. The outcomes are raw values of QLHalvoStatus.
struct CuePlay {
  std::string cueName;
  std::string cueVersion;
  QLHalvoType type = QLHalvoType::animationAndSound;
  std::int64_t animationOutcome = 0;
  std::int64_t soundOutcome = 0;
  HapticsAnalytics haptics;
  bool isMuted = false;
};

}  // namespace quellaro
