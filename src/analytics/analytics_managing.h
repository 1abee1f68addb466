#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "analytics/haptics_analytics.h"
#include "assets/version_config.h"
#include "types/halvo_enums.h"
#include "types/merchant.h"

namespace quellaro {

// Who counts plays. The controller sets the three fields while it prepares; they are read while a play is recorded.
class AnalyticsManaging {
 public:
  virtual ~AnalyticsManaging() = default;

  // The outcomes are raw values of QLHalvoStatus: 800 (fine), 907 (the animation failed), 906 (the sound failed) or 904
  // (rejected, another play was running). Blocks until the local files are updated or an upload has been started.
  virtual void recordPlay(const std::optional<std::string>& cueName, const std::optional<std::string>& cueVersion,
                          QLHalvoType type, std::int64_t animationOutcome, const HapticsAnalytics& haptics,
                          std::int64_t soundOutcome, bool isMuted) = 0;

  std::shared_ptr<const QLHalvoMerchant> merchant;
  std::optional<QLHalvoEnvironment> environment;
  std::optional<QLHalvoAnalyticsInfo> config;
};

}  // namespace quellaro
