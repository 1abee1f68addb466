#pragma once

#include <memory>
#include <string>

#include "assets/sdk_config.h"
#include "check/report.h"

namespace halvo {

// Null when the player cannot read it either, which is then told.
std::shared_ptr<const quellaro::QLHalvoSDKConfig> readConfig(const std::string& path, Report& report);

// The times of that many frames. Gives when the animation ends, in seconds from the start of a play.
double checkTiming(const quellaro::QLHalvoSDKConfig& config, std::size_t frames, Report& report);

}  // namespace halvo
