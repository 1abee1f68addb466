#pragma once

#include <optional>
#include <string>

#include "check/report.h"

namespace halvo {

// The pattern against what the configuration says of it. Gives its length in seconds when it will be felt.
std::optional<double> checkHaptics(const std::string& path, bool isSupported, Report& report);

}  // namespace halvo
