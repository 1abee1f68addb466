#pragma once

#include <optional>
#include <string>

#include "check/report.h"

namespace halvo {

// Decodes all of it. Gives its length in seconds, or nothing when there is nothing to hear.
std::optional<double> checkSound(const std::string& path, Report& report);

}  // namespace halvo
