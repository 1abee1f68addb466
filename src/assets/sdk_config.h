#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platform/foundation/error.h"

namespace quellaro {

// How one cue is played: its "play_config.json", whose keys are the names of these fields. Shared, and never changed
// once decoded.
struct QLHalvoSDKConfig {
  std::int64_t totalFrames = 0;
  std::optional<std::string> svgPreFix;
  std::string soundFileName;
  // From the start of playing to the start of the part, in milliseconds.
  double soundDelayInMillis = 0;
  double animationDelayInMillis = 0;
  // How long each frame stays on screen, in milliseconds, under "Frame_1", "Frame_2" and so on.
  std::map<std::string, double> frameTime;
  std::string viewBox;
  bool isHapticsSupported = false;

  // How long the frame with this index (from 0) stays on screen; nothing when that is not said.
  std::optional<double> secondsOfFrame(std::size_t index) const;
};

// The first thing that is wrong, in the order of the fields, ends the decoding.
Result<std::shared_ptr<const QLHalvoSDKConfig>> decodeSDKConfig(std::string json);

}  // namespace quellaro
