#pragma once

#include <memory>
#include <string>

#include "check/report.h"
#include "platform/corehaptics/haptic_pattern.h"

namespace halvo {

// The pattern against what the configuration says of it. Null unless it will be felt.
std::shared_ptr<const quellaro::CHHapticPattern> checkHaptics(const std::string& path, bool isSupported,
                                                              Report& report);

}  // namespace halvo
