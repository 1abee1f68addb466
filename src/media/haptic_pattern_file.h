#pragma once

#include <memory>
#include <string>

#include "platform/corehaptics/haptic_pattern.h"

namespace quellaro {

// The pattern in an AHAP file. HapticsFeedbackError::invalidAHAPFile when the file cannot be read or is no JSON object;
// the platform's own error when it is no pattern.
Result<std::shared_ptr<const CHHapticPattern>> loadHapticPattern(const std::string& path);

}  // namespace quellaro
