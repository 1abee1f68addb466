#include "media/audio_controller.h"

#include <utility>

#include "assets/halvo_file_manager.h"
#include "platform/avfoundation/audio_session.h"
#include "platform/foundation/notification_center.h"
#include "types/notifications.h"

namespace quellaro {

namespace {

constexpr const char* kMuted = "Voulume was mute";
constexpr const char* kBrokenOff = "Internal error";

// Whether it worked makes no difference to the cue.
void activateSession() {
  AVAudioSession& session = AVAudioSession::sharedInstance();
  if (session.setCategory(AVAudioSessionCategoryAmbient, AVAudioSessionModeDefault,
                          AVAudioSessionCategoryOptions::DuckOthers))
    return;
  session.setActive(true);
}

void call(const Callback& callback) {
  // A copy: what it does may replace or destroy the original.
  if (const Callback held = callback) held();
}

}  // namespace

QLHalvoAudioController::~QLHalvoAudioController() {
  if (player_) player_->stop();
}

void QLHalvoAudioController::prepare(const std::string& cueName, Callback onSuccess, Callback onFailure) {
  const std::string path = HalvoFileManager::assetsDirectoryPath(cueName) + "/" + kSoundFile;
  // No file URL can be made of such a path.
  if (path.find('\0') != std::string::npos) return call(onFailure);
  Result<std::unique_ptr<AVAudioPlayer>> player = AVAudioPlayer::initWithContentsOfURL(path);
  if (!player) {
    inaudibleReason_ = player.error().localizedDescription;
    return call(onFailure);
  }
  player_ = std::move(*player);
  activateSession();
  player_->prepareToPlay();
  player_->setDelegate(weak_from_this());
  call(onSuccess);
}

void QLHalvoAudioController::play(const std::shared_ptr<QLHalvoView>& /*view*/,
                                  const std::shared_ptr<const QLHalvoSDKConfig>& /*config*/, Callback onSuccess,
                                  Callback onFailure) {
  if (!player_) {
    soundPlayed_ = false;
    volumeLevel_ = AVAudioSession::sharedInstance().outputVolume();
    return call(onFailure);
  }
  completion_ = std::move(onSuccess);
  failure_ = std::move(onFailure);
  player_->play();
}

void QLHalvoAudioController::audioPlayerDidFinishPlaying(AVAudioPlayer& /*player*/, bool successfully) {
  volumeLevel_ = AVAudioSession::sharedInstance().outputVolume();
  soundPlayed_ = successfully && volumeLevel_ > 0;
  inaudibleReason_.reset();
  if (!soundPlayed_) inaudibleReason_ = successfully ? kMuted : kBrokenOff;
  queue_.async([] { AVAudioSession::sharedInstance().setActive(false); });
  NSNotificationCenter::defaultCenter().post(QLAudioSessionDeactivated);
  call(completion_);
}

void QLHalvoAudioController::audioPlayerDecodeErrorDidOccur(AVAudioPlayer& /*player*/,
                                                            const std::optional<NSError>& error) {
  volumeLevel_ = AVAudioSession::sharedInstance().outputVolume();
  soundPlayed_ = false;
  inaudibleReason_ = error ? std::optional(error->localizedDescription) : std::nullopt;
  call(failure_);
}

}  // namespace quellaro
