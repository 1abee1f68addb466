#include "controller/halvo_controller.h"

#include <utility>

#include "assets/version_config.h"
#include "controller/halvo_collaborators.h"
#include "controller/settled_configuration.h"

namespace quellaro {

namespace {

// Made the first time somebody asks, and kept.
template <class Collaborator>
Collaborator* madeOnFirstUse(std::shared_ptr<Collaborator>& kept,
                             const Function<std::shared_ptr<Collaborator>()>& make) {
  if (!kept) kept = make();
  return kept.get();
}

}  // namespace

std::shared_ptr<QLHalvoController> QLHalvoController::make() {
  settleConfiguration();
  return make(HalvoCollaborators::standard());
}

std::shared_ptr<QLHalvoController> QLHalvoController::make(HalvoCollaborators collaborators) {
  return std::shared_ptr<QLHalvoController>(new QLHalvoController(std::move(collaborators)));
}

QLHalvoController::QLHalvoController(HalvoCollaborators collaborators)
    : collaborators_(std::make_shared<const HalvoCollaborators>(std::move(collaborators))),
      mixpanelAnalyticsManager_(collaborators_->makeAnalyticsManager()) {}

QLHalvoControllerProtocol* QLHalvoController::animationController() {
  return madeOnFirstUse(animationController_, collaborators_->makeAnimationController);
}

QLHalvoSoundProtocol* QLHalvoController::audioController() {
  return madeOnFirstUse(audioController_, collaborators_->makeAudioController);
}

UpgradeControlling* QLHalvoController::upgradeController() {
  return madeOnFirstUse(upgradeController_, collaborators_->makeUpgradeController);
}

void QLHalvoController::setVersionConfig(std::shared_ptr<const QLHalvoVersionConfig> config) {
  configuration_.halvoVersionConfig = std::move(config);
  if (!mixpanelAnalyticsManager_) return;
  mixpanelAnalyticsManager_->config =
      configuration_.halvoVersionConfig ? configuration_.halvoVersionConfig->analytics : std::nullopt;
}

}  // namespace quellaro
