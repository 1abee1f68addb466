#include <algorithm>
#include <string>

#include "assets/sdk_config.h"
#include "controller/halvo_controller.h"
#include "media/haptics_feedback_error.h"
#include "media/haptics_manager_protocol.h"
#include "platform/foundation/console.h"
#include "platform/foundation/storage/bundle.h"
#include "platform/foundation/storage/file_manager.h"
#include "types/controller_protocol.h"

namespace quellaro {

QLHalvoSound QLHalvoController::lastSound() const {
  return audioController_ ? audioController_->lastSound() : QLHalvoSound::none;
}

std::optional<double> QLHalvoController::duration() const {
  if (!preparedHalvoCue_ || !configuration_.sdkConfig) return std::nullopt;
  const QLHalvoSDKConfig& config = *configuration_.sdkConfig;
  double end = 0;
  const auto add = [&](const Status& status, const QLHalvoControllerProtocol* player, double delayInMillis) {
    constexpr double kMillisPerSecond = 1000.0;
    if (status.is(Status::Not_Required) || player == nullptr) return;
    end = std::max(end, std::max(0.0, delayInMillis / kMillisPerSecond) + player->duration(config));
  };
  add(parts_.animation, animationController_.get(), config.animationDelayInMillis);
  add(parts_.sound, audioController_.get(), config.soundDelayInMillis);
  if (hapticsManager_ && (parts_.haptics.is(Status::Ready) || parts_.haptics.is(Status::Played)))
    end = std::max(end, hapticsManager_->duration());
  return end;
}

void QLHalvoController::addReason(std::string_view reason) {
  if (!failureReason_.empty() && !reason.empty()) failureReason_ += "; ";
  failureReason_ += reason;
}

bool QLHalvoController::isUnusable(std::string_view path, std::string_view problem) {
  std::string& all = configuration_.problem;
  if (!all.empty()) all += "; ";
  for (const std::string_view piece : {path, std::string_view(": "), problem}) all += piece;
  return false;
}

void QLHalvoController::addHapticsReason(const Status& haptics) {
  const std::string_view file = hapticsManager_ ? hapticsManager_->failureReason() : std::string_view();
  addReason(file.empty() ? reasonOf(*haptics.error()) : file);
}

void QLHalvoController::noteFailedPrepare() {
  // What is wrong with each file follows from it.
  const std::string& bundle = NSBundle::library().bundlePath();
  if (!FileManager::directoryExistsAtPath(bundle)) {
    failureReason_ = "There is no bundle, with Info.json and the built-in cue, at ";
    failureReason_ += bundle;
    return logLine(LogLevel::Error, failureReason_);
  }
  failureReason_ = configuration_.problem;
  if (parts_.animation.is(Status::Error) && animationController_) addReason(animationController_->failureReason());
  if (parts_.sound.is(Status::Error) && audioController_) addReason(audioController_->failureReason());
  logToSink(LogLevel::Error, failureReason_);
}

}  // namespace quellaro
