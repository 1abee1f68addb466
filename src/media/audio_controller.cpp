#include "media/audio_controller.h"

#include <utility>

#include "assets/halvo_file_manager.h"
#include "platform/avfoundation/audio_session.h"
#include "platform/dispatch/guard.h"
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
  if (callback) callback();
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
  // The old sound goes silent before the new one is there.
  const bool wasPlaying = player_ && player_->isPlaying();
  player_ = std::move(*player);
  if (wasPlaying) finish(false);
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
  callbacks_ = std::make_shared<const Callbacks>(Callbacks{std::move(onSuccess), std::move(onFailure)});
  player_->play();
}

void QLHalvoAudioController::audioPlayerDidFinishPlaying(AVAudioPlayer& /*player*/, bool successfully) {
  finish(successfully);
}

void QLHalvoAudioController::finish(bool successfully) {
  const std::shared_ptr<const Callbacks> told = callbacks_;
  lastSound_ = QLHalvoSound::brokenOff;
  // Nothing that fails on the way may keep the answer back.
  attempt([&] {
    volumeLevel_ = AVAudioSession::sharedInstance().outputVolume();
    soundPlayed_ = successfully && volumeLevel_ > 0;
    inaudibleReason_.reset();
    if (!soundPlayed_) inaudibleReason_ = successfully ? kMuted : kBrokenOff;
    if (soundPlayed_)
      lastSound_ = QLHalvoSound::heard;
    else if (AVAudioSession::sharedInstance().output()->reachedNobody())
      lastSound_ = QLHalvoSound::noServer;
    else if (successfully)
      lastSound_ = QLHalvoSound::muted;
  });
  attempt([] {
    AVAudioSession::sharedInstance().setActive(false);
    NSNotificationCenter::defaultCenter().post(QLAudioSessionDeactivated);
  });
  if (told) call(told->completion);
}

void QLHalvoAudioController::audioPlayerDecodeErrorDidOccur(AVAudioPlayer& /*player*/,
                                                            const std::optional<NSError>& error) {
  const std::shared_ptr<const Callbacks> told = callbacks_;
  lastSound_ = QLHalvoSound::undecodable;
  attempt([&] {
    volumeLevel_ = AVAudioSession::sharedInstance().outputVolume();
    soundPlayed_ = false;
    inaudibleReason_ = error ? std::optional(error->localizedDescription) : std::nullopt;
  });
  if (told) call(told->failure);
}

}  // namespace quellaro
