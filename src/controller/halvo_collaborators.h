#pragma once

#include <memory>

#include "analytics/analytics_managing.h"
#include "assets/upgrade_controlling.h"
#include "media/haptics_manager_protocol.h"
#include "platform/dispatch/function.h"
#include "platform/foundation/error.h"
#include "types/controller_protocol.h"

namespace quellaro {

// Who a controller works with. Each is made on first use and kept for the controller's life; the analytics manager is
// made with the controller. One that is null takes no part: a player that is missing fails to prepare, an upgrade that
// is missing finds nothing, and without analytics nothing is counted.
struct HalvoCollaborators {
  Function<std::shared_ptr<QLHalvoControllerProtocol>()> makeAnimationController;
  Function<std::shared_ptr<QLHalvoSoundProtocol>()> makeAudioController;
  Function<std::shared_ptr<UpgradeControlling>()> makeUpgradeController;
  // Asked again at each prepare until it succeeds.
  Function<Result<std::shared_ptr<HapticsManagerProtocol>>()> makeHapticsManager;
  // Whether the device's hardware supports haptics.
  Function<bool()> supportsHaptics;
  Function<std::shared_ptr<AnalyticsManaging>()> makeAnalyticsManager;

  // The real ones.
  static HalvoCollaborators standard();
};

}  // namespace quellaro
