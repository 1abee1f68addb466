#include "public/halvo_collaborators.h"

#include "assets/upgrade_controller.h"
#include "media/audio_controller.h"
#include "media/haptics_feedback_error.h"

namespace quellaro {

HalvoCollaborators HalvoCollaborators::standard() {
  return {
      .makeAnimationController = [] { return nullptr; },
      .makeAudioController = [] { return std::make_shared<QLHalvoAudioController>(); },
      .makeUpgradeController = [] { return QLUpgradeController::make(); },
      .makeHapticsManager = []() -> Result<std::shared_ptr<HapticsManagerProtocol>> {
        return errorOf(HapticsFeedbackError::deviceDoesNotSupportHaptics);
      },
      .supportsHaptics = [] { return false; },
      .makeAnalyticsManager = [] { return nullptr; },
  };
}

}  // namespace quellaro
