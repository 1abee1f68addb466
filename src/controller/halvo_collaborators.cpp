#include "controller/halvo_collaborators.h"

#include "analytics/analytics_manager.h"
#include "animation/halvo_animation_controller.h"
#include "assets/upgrade_controller.h"
#include "media/audio_controller.h"
#include "media/haptics_manager.h"
#include "platform/corehaptics/haptic_engine.h"

namespace quellaro {

HalvoCollaborators HalvoCollaborators::standard() {
  return {
      .makeAnimationController = [] { return std::make_shared<QLHalvoAnimationController>(); },
      .makeAudioController = [] { return std::make_shared<QLHalvoAudioController>(); },
      .makeUpgradeController = [] { return QLUpgradeController::make(); },
      .makeHapticsManager = HapticsManager::make,
      .supportsHaptics = [] { return CHHapticEngine::capabilitiesForHardware().supportsHaptics; },
      .makeAnalyticsManager = [] { return MixpanelAnalyticsManager::make(); },
  };
}

}  // namespace quellaro
