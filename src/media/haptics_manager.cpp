#include "media/haptics_manager.h"

#include <optional>

#include "assets/halvo_file_manager.h"
#include "media/haptic_pattern_file.h"
#include "media/haptics_feedback_error.h"
#include "platform/dispatch/guard.h"
#include "platform/foundation/console.h"

namespace quellaro {

namespace {

void printError(const NSError& error) {
  print("[QuellaroHalvoSDK] ERROR: " + error.localizedDescription, LogLevel::Error);
}

Result<std::shared_ptr<CHHapticPatternPlayer>> loadPlayer(CHHapticEngine& engine, const std::string& path) {
  Result<std::shared_ptr<const CHHapticPattern>> pattern = loadHapticPattern(path);
  if (!pattern) return pattern.error();
  return engine.createPlayerWithPattern(std::move(*pattern));
}

// Prints why a pattern could not be prepared, and gives what the controller is told of it.
HapticsFeedbackError reportPrepareError(const NSError& error) {
  if (isHapticsFeedbackError(error, HapticsFeedbackError::invalidAHAPFile)) {
    print(messageOf(HapticsFeedbackError::invalidAHAPFile), LogLevel::Error);
    return HapticsFeedbackError::invalidAHAPFile;
  }
  print(error.localizedDescription, LogLevel::Error);
  return HapticsFeedbackError::unknown;
}

// One play's outcome: written once, then the group is left. A play that nobody ends fails when it is forgotten.
class PlayOutcome {
 public:
  PlayOutcome(HapticsStatusWriter setStatus, std::shared_ptr<DispatchGroup> group)
      : setStatus_(std::move(setStatus)), group_(std::move(group)) {}
  PlayOutcome(const PlayOutcome&) = delete;
  PlayOutcome& operator=(const PlayOutcome&) = delete;
  ~PlayOutcome() {
    if (group_) end(errorOf(HapticsFeedbackError::unknown));
  }

  // Played, if there is no error.
  void end(const std::optional<NSError>& error) noexcept {
    if (!group_) return;
    ComponentStatus status = error ? ComponentStatus::Error : ComponentStatus::Played;
    // Without memory for it the error is a generic one.
    attempt([&] {
      if (error) status = ComponentStatus::withError(*error);
    });
    setStatus_(status);
    std::exchange(group_, nullptr)->leave();
  }

 private:
  HapticsStatusWriter setStatus_;
  std::shared_ptr<DispatchGroup> group_;
};

}  // namespace

Result<std::shared_ptr<HapticsManagerProtocol>> HapticsManager::make() {
  if (!CHHapticEngine::capabilitiesForHardware().supportsHaptics) {
    print(messageOf(HapticsFeedbackError::deviceDoesNotSupportHaptics), LogLevel::Error);
    return errorOf(HapticsFeedbackError::deviceDoesNotSupportHaptics);
  }
  Result<std::shared_ptr<CHHapticEngine>> engine = CHHapticEngine::initAndReturnError();
  if (!engine) {
    printError(engine.error());
    return engine.error();
  }
  return std::shared_ptr<HapticsManagerProtocol>(new HapticsManager(std::move(*engine)));
}

void HapticsManager::prepare(const std::string& cueName, const HapticsStatusWriter& setStatus,
                             const std::shared_ptr<DispatchGroup>& group) {
  const std::string path = HalvoFileManager::assetsDirectoryPath(cueName) + "/" + kHapticsFile;
  Result<std::shared_ptr<CHHapticPatternPlayer>> player = loadPlayer(*hapticsEngine_, path);
  if (player) {
    player_ = std::move(*player);
    failureReason_.clear();
    setStatus(ComponentStatus::Ready);
  } else {
    (failureReason_ = path + ": ") += reasonOf(player.error());
    setStatus(ComponentStatus::withError(errorOf(reportPrepareError(player.error()))));
  }
  group->leave();
}

std::optional<NSError> HapticsManager::start(CHHapticFinishedHandler onEnd) {
  if (std::optional<NSError> error = hapticsEngine_->startAndReturnError()) return error;
  hapticsEngine_->notifyWhenPlayersFinished(std::move(onEnd));
  return player_ ? player_->startAtTime(0) : errorOf(HapticsFeedbackError::unknown);
}

void HapticsManager::play(const HapticsStatusWriter& setStatus, const std::shared_ptr<DispatchGroup>& group) {
  std::optional<NSError> error = outOfMemory();
  const auto outcome = std::make_shared<PlayOutcome>(setStatus, group);
  attempt([&] {
    error = start([outcome](const std::optional<NSError>& reason) {
      outcome->end(reason);
      return CHHapticEngineFinishedAction::StopEngine;
    });
  });
  if (!error) return;
  outcome->end(error);
  attempt([&] { printError(*error); });
}

}  // namespace quellaro
