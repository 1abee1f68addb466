#pragma once

#include <cstddef>

#include "assets/sdk_config.h"
#include "check/report.h"

namespace halvo {

// The times of that many frames. Gives when the animation ends, in seconds from the start of a play.
double checkTiming(const quellaro::QLHalvoSDKConfig& config, std::size_t frames, Report& report);

}  // namespace halvo
