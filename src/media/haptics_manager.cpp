#include "media/haptics_manager.h"

#include <optional>

#include "assets/halvo_file_manager.h"
#include "media/haptic_pattern_file.h"
#include "media/haptics_feedback_error.h"
#include "platform/foundation/console.h"

namespace quellaro {

namespace {

void printError(const NSError& error) { print("[QuellaroHalvoSDK] ERROR: " + error.localizedDescription); }

Result<std::shared_ptr<CHHapticPatternPlayer>> loadPlayer(CHHapticEngine& engine, const std::string& path) {
  Result<std::shared_ptr<const CHHapticPattern>> pattern = loadHapticPattern(path);
  if (!pattern) return pattern.error();
  return engine.createPlayerWithPattern(std::move(*pattern));
}

// Prints why a pattern could not be prepared, and gives what the controller is told of it.
HapticsFeedbackError reportPrepareError(const NSError& error) {
  if (isHapticsFeedbackError(error, HapticsFeedbackError::invalidAHAPFile)) {
    print(messageOf(HapticsFeedbackError::invalidAHAPFile));
    return HapticsFeedbackError::invalidAHAPFile;
  }
  print(error.localizedDescription);
  return HapticsFeedbackError::unknown;
}

// One play's outcome: written once, then the group is left. A play that nobody ends fails when it is forgotten.
class PlayOutcome {
 public:
  PlayOutcome(HapticsStatusWriter setStatus, std::shared_ptr<DispatchGroup> group)
      : setStatus_(std::move(setStatus)), group_(std::move(group)) {}
  PlayOutcome(const PlayOutcome&) = delete;
  PlayOutcome& operator=(const PlayOutcome&) = delete;
  ~PlayOutcome() { end(ComponentStatus::withError(errorOf(HapticsFeedbackError::unknown))); }

  void end(const ComponentStatus& status) {
    if (!group_) return;
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
    print(messageOf(HapticsFeedbackError::deviceDoesNotSupportHaptics));
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
    setStatus(ComponentStatus::Ready);
  } else {
    setStatus(ComponentStatus::withError(errorOf(reportPrepareError(player.error()))));
  }
  group->leave();
}

void HapticsManager::play(const HapticsStatusWriter& setStatus, const std::shared_ptr<DispatchGroup>& group) {
  const auto outcome = std::make_shared<PlayOutcome>(setStatus, group);
  std::optional<NSError> error = hapticsEngine_->startAndReturnError();
  if (!error) {
    hapticsEngine_->notifyWhenPlayersFinished([outcome](const std::optional<NSError>& reason) {
      outcome->end(reason ? ComponentStatus::withError(*reason) : ComponentStatus::Played);
      return CHHapticEngineFinishedAction::StopEngine;
    });
    error = player_ ? player_->startAtTime(0) : errorOf(HapticsFeedbackError::unknown);
  }
  if (!error) return;
  outcome->end(ComponentStatus::withError(*error));
  printError(*error);
}

}  // namespace quellaro
