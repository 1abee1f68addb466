#include <exception>
#include <utility>

#include "assets/halvo_file_manager.h"
#include "assets/halvo_utility.h"
#include "assets/sdk_config.h"
#include "assets/version_config.h"
#include "controller/cue_part.h"
#include "controller/halvo_collaborators.h"
#include "controller/halvo_controller.h"
#include "media/haptics_feedback_error.h"
#include "platform/dispatch/guard.h"
#include "platform/dispatch/main_queue.h"
#include "platform/foundation/console.h"
#include "platform/foundation/storage/file_manager.h"
#include "types/cue_name.h"

namespace quellaro {

namespace {

constexpr std::string_view kUnreadable = "It is missing or cannot be read";

// Each is called, whatever those before it do.
void callAll(const std::vector<HalvoCompletion>& completions, QLHalvoStatus code) {
  std::exception_ptr thrown;
  for (const HalvoCompletion& completion : completions) {
    try {
      completion(code);
    } catch (...) {
      if (!thrown) thrown = std::current_exception();
    }
  }
  if (thrown) std::rethrow_exception(thrown);
}

// Loads the part of a player that is there.
void preparePlayer(QLHalvoControllerProtocol* player, const std::string& cue,
                   const std::shared_ptr<ComponentStatus>& status, const std::shared_ptr<DispatchGroup>& group) {
  if (player == nullptr) {
    *status = ComponentStatus::Error;
    return;
  }
  const auto part = std::make_shared<CuePart>(status, group);
  player->prepare(
      cue, [part] { part->end(ComponentStatus::Ready); }, [part] { part->end(ComponentStatus::Error); });
}

}  // namespace

struct QLHalvoController::Prepare {
  Parts parts;
  // What loads_ was while it loaded.
  std::uint64_t load = 0;
  // Its own, and those of the prepares that it has overtaken.
  std::vector<HalvoCompletion> completions;
};

void QLHalvoController::prepare(QLHalvoType type, const std::string& halvoCue, QLHalvoEnvironment environment,
                                std::shared_ptr<const QLHalvoMerchant> merchant, bool isHapticsEnabled,
                                HalvoCompletion completion) {
  if (MainQueue::isInherited()) {
    if (completion) completion(QLHalvoStatus::prepareFailed);
    return;
  }
  // The completion may come in this call and drop the last reference.
  const auto self = shared_from_this();
  Request next{std::move(merchant), environment, type, normalisedCueName(halvoCue), isHapticsEnabled};
  Undo restore([this, before = request_]() mutable { request(std::move(before)); });
  request(std::move(next));
  failureReason_.clear();
  // Whatever the completion does. Not where nothing could be begun: that prepare has not been.
  const Undo check([this, &restore] {
    if (!restore.isArmed()) checkForUpgrade();
  });
  if (isPreparedAlready()) {
    restore.keep();
    if (completion) completion(QLHalvoStatus::success);
    return;
  }
  runPrepareSequence(std::move(completion));
  restore.keep();
}

void QLHalvoController::request(Request next) {
  request_ = std::move(next);
  if (!mixpanelAnalyticsManager_) return;
  mixpanelAnalyticsManager_->merchant = request_.merchant;
  mixpanelAnalyticsManager_->environment = request_.halvoEnvironment;
}

// That there is no newer version to be had is no failure of the prepare.
void QLHalvoController::checkForUpgrade() {
  attempt([this] {
    UpgradeControlling* upgrade = upgradeController();
    if (upgrade == nullptr) return;
    upgrade->setPreparingHalvoCue(*request_.preparingHalvoCue);
    upgrade->checkForUpgrade();
  });
}

bool QLHalvoController::isPreparedAlready() const {
  return preparing_.expired() && preparedHalvoCue_ && preparedHalvoCue_ == request_.preparingHalvoCue &&
         configuration_.versionConfigStatus.is(Status::Ready) && configuration_.playConfigStatus.is(Status::Ready) &&
         parts_.animation.isUsable() && parts_.sound.isUsable() && !shouldReprepareAssets_;
}

// Ends with the last thing that can fail: until then nothing is under way, and the cue prepared before is gone.
void QLHalvoController::runPrepareSequence(HalvoCompletion completion) {
  const auto prepare = std::make_shared<Prepare>();
  if (const auto overtaken = preparing_.lock()) prepare->completions = overtaken->completions;
  if (completion) prepare->completions.push_back(std::move(completion));
  prepare->load = ++loads_;
  const bool needsAnimation = request_.halvoType != QLHalvoType::soundOnly;
  const bool needsSound = request_.halvoType != QLHalvoType::animationOnly;
  parts_.animation = needsAnimation ? Status::Not_Ready : Status::Not_Required;
  parts_.sound = needsSound ? Status::Not_Ready : Status::Not_Required;
  prepare->parts = parts_;

  const std::string& cue = *request_.preparingHalvoCue;
  Configuration& configuration = configuration_;
  configuration.versionConfigStatus = configuration.playConfigStatus = Status::Not_Ready;
  UpgradeControlling* const upgrade = upgradeController();
  const FileLock reading = upgrade != nullptr ? upgrade->beginReading(cue) : FileLock();
  configuration.problem.clear();
  configuration.versionConfigStatus = loadVersionConfig() ? Status::Ready : Status::Error;
  const auto& entry = configuration.halvoVersionConfig;
  configuration.isPreparedHalvoCueValid = entry && entry->cues && entry->cues->contains(cue);
  configuration.playConfigStatus = loadPlayConfig() ? Status::Ready : Status::Error;

  const auto group = std::make_shared<DispatchGroup>();
  const auto statusOf = [&](Status Parts::*status) {
    return std::shared_ptr<Status>(prepare, &(prepare->parts.*status));
  };
  if (needsAnimation) preparePlayer(animationController(), cue, statusOf(&Parts::animation), group);
  if (needsSound) preparePlayer(audioController(), cue, statusOf(&Parts::sound), group);
  prepareHaptics(prepare, group);
  group->notify(MainQueue::shared(), [weak = weak_from_this(), prepare] {
    if (const auto self = weak.lock()) self->finishPrepare(prepare);
  });
  preparing_ = prepare;
  // What has been loaded already can be played before the answer.
  if (group->isEmpty()) parts_ = prepare->parts;
}

bool QLHalvoController::loadVersionConfig() {
  setVersionConfig(nullptr);
  std::string path;
  std::optional<std::string> bytes = HalvoFileManager::versionConfigOrBuiltIn(path);
  if (!bytes) return isUnusable(path, kUnreadable);
  const auto entries = decodeVersionConfigs(std::move(*bytes));
  if (!entries) return isUnusable(path, entries.error().localizedDescription);
  std::optional<QLHalvoVersionConfig> chosen = selectForSdkVersion(*entries, HalvoUtility::sdkVersion());
  if (!chosen) return isUnusable(path, "No \"sdk_versions\" lists the version that Info.json tells");
  setVersionConfig(std::make_shared<const QLHalvoVersionConfig>(std::move(*chosen)));
  return true;
}

bool QLHalvoController::loadPlayConfig() {
  const std::string path = HalvoFileManager::assetsDirectoryPath(request_.preparingHalvoCue) + "/" + kPlayConfigFile;
  std::optional<std::string> bytes = FileManager::contentsAtPath(path);
  if (!bytes) return isUnusable(path, kUnreadable);
  auto config = decodeSDKConfig(std::move(*bytes));
  if (!config) return isUnusable(path, config.error().localizedDescription);
  configuration_.sdkConfig = std::move(*config);
  return true;
}

void QLHalvoController::prepareHaptics(const std::shared_ptr<Prepare>& prepare,
                                       const std::shared_ptr<DispatchGroup>& group) {
  Status& status = prepare->parts.haptics;
  if (!request_.isHapticsEnabled) {
    status = Status::Not_Required;
    return;
  }
  if (!hapticsManager_) {
    auto made = collaborators_->makeHapticsManager();
    if (!made) {
      const bool isMissing = isHapticsFeedbackError(made.error(), HapticsFeedbackError::deviceDoesNotSupportHaptics);
      status = isMissing ? Status::withError(made.error()) : Status(Status::Error);
      return;
    }
    hapticsManager_ = std::move(*made);
  }
  group->enter();
  hapticsManager_->prepare(
      *request_.preparingHalvoCue, [prepare](const Status& outcome) { prepare->parts.haptics = outcome; }, group);
}

void QLHalvoController::finishPrepare(const std::shared_ptr<Prepare>& prepare) {
  // A later one answers for both.
  if (preparing_.lock() != prepare) return;
  std::optional<QLHalvoStatus> code;
  if (!attempt([&] { code = outcomeOf(*prepare); })) {
    // Half a cue is none.
    configuration_.versionConfigStatus = Status::Error;
    preparedHalvoCue_.reset();
    failureReason_ = "Out of memory";
    code = QLHalvoStatus::prepareFailed;
  }
  if (!code && preparing_.lock() != prepare) return;
  preparing_.reset();
  if (code) callAll(prepare->completions, *code);
}

std::optional<QLHalvoStatus> QLHalvoController::outcomeOf(const Prepare& prepare) {
  preparedHalvoCue_.reset();
  // A prepare that then could not be begun has spoilt what this one had loaded.
  if (prepare.load != loads_) {
    runPrepareSequence({});
    return std::nullopt;
  }
  parts_ = prepare.parts;
  if (configuration_.versionConfigStatus.is(Status::Ready) && configuration_.playConfigStatus.is(Status::Ready) &&
      parts_.animation.isUsable() && parts_.sound.isUsable()) {
    halvoCueVersion_ = HalvoUtility::cueVersion(*request_.preparingHalvoCue);
    preparedHalvoCue_ = request_.preparingHalvoCue;
    if (request_.isHapticsEnabled && !configuration_.sdkConfig->isHapticsSupported) {
      parts_.haptics = Status::withError(errorOf(HapticsFeedbackError::cueDoesNotSupportHaptics));
      print(messageOf(HapticsFeedbackError::cueDoesNotSupportHaptics), LogLevel::Error);
    }
    if (parts_.haptics.is(Status::Error)) addHapticsReason(parts_.haptics);
    return QLHalvoStatus::success;
  }
  attempt([this] { noteFailedPrepare(); });
  if (!retryOnPrepareFailure_) return failedPrepareCode();
  if (UpgradeControlling* upgrade = upgradeController()) upgrade->discardActiveCueAssets();
  runPrepareSequence({});
  retryOnPrepareFailure_ = false;
  return std::nullopt;
}

// Nothing when a component has left without an outcome.
std::optional<QLHalvoStatus> QLHalvoController::failedPrepareCode() const {
  const auto isOut = [](const Status& status) { return status.is(Status::Not_Required) || status.is(Status::Error); };
  if (configuration_.versionConfigStatus.is(Status::Error) || configuration_.playConfigStatus.is(Status::Error))
    return QLHalvoStatus::prepareFailed;
  if (isOut(parts_.animation) && isOut(parts_.sound)) return QLHalvoStatus::prepareFailed;
  if (parts_.animation.is(Status::Error)) return QLHalvoStatus::animationPrepareFailed;
  if (parts_.sound.is(Status::Error)) return QLHalvoStatus::soundPrepareFailed;
  if (parts_.haptics.is(Status::Error)) return QLHalvoStatus::hapticsPrepareFailed;
  return std::nullopt;
}

}  // namespace quellaro
