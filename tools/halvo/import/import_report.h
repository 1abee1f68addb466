#pragma once

#include <optional>
#include <string>

#include "check/cue.h"
#include "import/frames.h"
#include "sound/loudness.h"

namespace halvo {

// What an import comes to.
struct Outcome {
  std::string target;
  bool isWritten = false;
  CueFacts facts;
  std::vector<FrameFigures> frames;
  std::optional<SoundLevels> sound;  // where a loudness was asked for
};

// For people, and for machines: the findings in the forms of the checker, and what the frames cost.
std::string importText(const Outcome& outcome, const Report& report, bool withColor);
std::string importJson(const Outcome& outcome, const Report& report);

}  // namespace halvo
