#pragma once

#include <optional>
#include <string>

#include "import/refusal.h"

namespace halvo {

struct HapticPart {
  std::string pattern;            // the text of the pattern
  std::optional<double> seconds;  // absent: nothing in it is felt
};

// A pattern that the player takes: the one of that file, or with no name one without events.
Importing<HapticPart> readHaptics(const std::string& file, Report& report);

}  // namespace halvo
