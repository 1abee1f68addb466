#include <algorithm>
#include <utility>

#include "assets/halvo_file_manager.h"
#include "assets/halvo_utility.h"
#include "assets/sdk_config.h"
#include "assets/version_config.h"
#include "controller/halvo_collaborators.h"
#include "controller/halvo_controller.h"
#include "media/haptics_feedback_error.h"
#include "platform/dispatch/main_queue.h"
#include "platform/foundation/console.h"
#include "platform/foundation/storage/file_manager.h"
#include "types/cue_name.h"

namespace quellaro {

void QLHalvoController::prepare(QLHalvoType type, const std::string& halvoCue, QLHalvoEnvironment environment,
                                std::shared_ptr<const QLHalvoMerchant> merchant, bool isHapticsEnabled,
                                HalvoCompletion completion) {
  merchant_ = std::move(merchant);
  halvoEnvironment_ = environment;
  halvoType_ = type;
  preparingHalvoCue_ = normalisedCueName(halvoCue);
  if (mixpanelAnalyticsManager_) {
    mixpanelAnalyticsManager_->merchant = merchant_;
    mixpanelAnalyticsManager_->environment = halvoEnvironment_;
  }
  isHapticsEnabled_ = isHapticsEnabled;
  runPrepareSequence(type, std::move(completion));
  if (UpgradeControlling* upgrade = upgradeController()) {
    upgrade->setPreparingHalvoCue(*preparingHalvoCue_);
    upgrade->checkForUpgrade();
  }
}

bool QLHalvoController::isPreparedAlready() const {
  return preparedHalvoCue_ && preparedHalvoCue_ == preparingHalvoCue_ && versionConfigStatus_.is(Status::Ready) &&
         playConfigStatus_.is(Status::Ready) && animationStatus_.isUsable() && soundStatus_.isUsable() &&
         !shouldReprepareAssets_;
}

void QLHalvoController::runPrepareSequence(QLHalvoType type, HalvoCompletion completion) {
  if (isPreparedAlready()) {
    if (completion) completion(QLHalvoStatus::success);
    return;
  }
  const bool needsAnimation = type != QLHalvoType::soundOnly;
  const bool needsSound = type != QLHalvoType::animationOnly;
  animationStatus_ = needsAnimation ? Status::Not_Ready : Status::Not_Required;
  soundStatus_ = needsSound ? Status::Not_Ready : Status::Not_Required;

  UpgradeControlling* const upgrade = upgradeController();
  const FileLock reading = upgrade != nullptr ? upgrade->beginReading(*preparingHalvoCue_) : FileLock();
  versionConfigStatus_ = loadVersionConfig() ? Status::Ready : Status::Error;
  isPreparedHalvoCueValid_ =
      halvoVersionConfig_ && halvoVersionConfig_->cues && halvoVersionConfig_->cues->contains(*preparingHalvoCue_);
  playConfigStatus_ = loadPlayConfig() ? Status::Ready : Status::Error;

  const auto group = std::make_shared<DispatchGroup>();
  if (needsAnimation) preparePlayer(animationController(), &QLHalvoController::animationStatus_, group);
  if (needsSound) preparePlayer(audioController(), &QLHalvoController::soundStatus_, group);
  prepareHaptics(group);
  group->notify(MainQueue::shared(), [weak = weak_from_this(), completion = std::move(completion)] {
    if (const auto self = weak.lock()) self->finishPrepare(completion);
  });
}

bool QLHalvoController::loadVersionConfig() {
  setVersionConfig(nullptr);
  std::optional<std::string> bytes = HalvoFileManager::versionConfigOrBuiltIn();
  if (!bytes) return false;
  const auto entries = decodeVersionConfigs(std::move(*bytes));
  if (!entries) return false;
  std::optional<QLHalvoVersionConfig> chosen = selectForSdkVersion(*entries, HalvoUtility::sdkVersion());
  if (!chosen) return false;
  setVersionConfig(std::make_shared<const QLHalvoVersionConfig>(std::move(*chosen)));
  return true;
}

bool QLHalvoController::loadPlayConfig() {
  const std::string path = HalvoFileManager::assetsDirectoryPath(preparingHalvoCue_) + "/" + kPlayConfigFile;
  std::optional<std::string> bytes = FileManager::contentsAtPath(path);
  if (!bytes) return false;
  auto config = decodeSDKConfig(std::move(*bytes));
  if (!config) return false;
  sdkConfig_ = std::move(*config);
  return true;
}

void QLHalvoController::preparePlayer(QLHalvoControllerProtocol* player, Status QLHalvoController::*status,
                                      const std::shared_ptr<DispatchGroup>& group) {
  if (player == nullptr) {
    this->*status = Status::Error;
    return;
  }
  group->enter();
  const auto finishAs = [&](Status::Case outcome) {
    return [weak = weak_from_this(), status, group, outcome] {
      if (const auto self = weak.lock()) (*self).*status = outcome;
      group->leave();
    };
  };
  player->prepare(*preparingHalvoCue_, finishAs(Status::Ready), finishAs(Status::Error));
}

void QLHalvoController::prepareHaptics(const std::shared_ptr<DispatchGroup>& group) {
  if (!isHapticsEnabled_.value_or(false)) {
    hapticsStatus_ = Status::Not_Required;
    return;
  }
  if (!hapticsManager_) {
    auto made = collaborators_->makeHapticsManager();
    if (!made) {
      const bool isMissing = isHapticsFeedbackError(made.error(), HapticsFeedbackError::deviceDoesNotSupportHaptics);
      hapticsStatus_ = isMissing ? Status::withError(made.error()) : Status(Status::Error);
      return;
    }
    hapticsManager_ = std::move(*made);
  }
  group->enter();
  hapticsManager_->prepare(*preparingHalvoCue_, hapticsStatusWriter(), group);
}

void QLHalvoController::finishPrepare(const HalvoCompletion& completion) {
  preparedHalvoCue_.reset();
  if (versionConfigStatus_.is(Status::Ready) && playConfigStatus_.is(Status::Ready) && animationStatus_.isUsable() &&
      soundStatus_.isUsable()) {
    preparedHalvoCue_ = preparingHalvoCue_;
    halvoCueVersion_ = HalvoUtility::cueVersion(*preparingHalvoCue_);
    if (isHapticsEnabled_.value_or(false) && !sdkConfig_->isHapticsSupported) {
      hapticsStatus_ = Status::withError(errorOf(HapticsFeedbackError::cueDoesNotSupportHaptics));
      print(messageOf(HapticsFeedbackError::cueDoesNotSupportHaptics));
    }
    if (completion) completion(QLHalvoStatus::success);
    return;
  }
  if (std::exchange(retryOnPrepareFailure_, false)) {
    if (UpgradeControlling* upgrade = upgradeController()) upgrade->discardActiveCueAssets();
    runPrepareSequence(*halvoType_, completion);
    return;
  }
  const std::optional<QLHalvoStatus> code = failedPrepareCode();
  if (code && completion) completion(*code);
}

// Nothing when a component has left without an outcome.
std::optional<QLHalvoStatus> QLHalvoController::failedPrepareCode() const {
  const auto isOut = [](const Status& status) { return status.is(Status::Not_Required) || status.is(Status::Error); };
  if (versionConfigStatus_.is(Status::Error) || playConfigStatus_.is(Status::Error))
    return QLHalvoStatus::prepareFailed;
  if (isOut(animationStatus_) && isOut(soundStatus_)) return QLHalvoStatus::prepareFailed;
  if (animationStatus_.is(Status::Error)) return QLHalvoStatus::animationPrepareFailed;
  if (soundStatus_.is(Status::Error)) return QLHalvoStatus::soundPrepareFailed;
  if (hapticsStatus_.is(Status::Error)) return QLHalvoStatus::hapticsPrepareFailed;
  return std::nullopt;
}

}  // namespace quellaro
