#pragma once

#include <memory>
#include <string>

#include "assets/sdk_config.h"
#include "check/report.h"

namespace halvo {

// Tells of every key of a play_config.json that is missing, wrong or unknown, with what it is for. Null when the player
// cannot read it.
std::shared_ptr<const quellaro::QLHalvoSDKConfig> readConfig(const std::string& path, Report& report);

}  // namespace halvo
