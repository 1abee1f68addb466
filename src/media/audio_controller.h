#pragma once

#include <optional>

#include "platform/avfoundation/audio_player.h"
#include "types/controller_protocol.h"

namespace quellaro {

// Plays the sound of a cue; while it sounds, other sounds of the machine may be lowered. Each finished sound is
// followed by the notification QLAudioSessionDeactivated. Main thread, where its callbacks come too. Made with
// make_shared: its player refers to it weakly.
class QLHalvoAudioController final : public QLHalvoSoundProtocol,
                                     public AVAudioPlayerDelegate,
                                     public std::enable_shared_from_this<QLHalvoAudioController> {
 public:
  QLHalvoAudioController() = default;
  ~QLHalvoAudioController() override;
  QLHalvoAudioController(const QLHalvoAudioController&) = delete;
  QLHalvoAudioController& operator=(const QLHalvoAudioController&) = delete;

  // Calls back at once. A prepare that fails leaves the sound prepared before as it is; one that succeeds breaks off a
  // sound that is playing, which then has ended unsuccessfully.
  void prepare(const std::string& cueName, Callback onSuccess, Callback onFailure) override;
  // `onSuccess` also follows a sound that nobody could hear or that the output broke off, `onFailure` one that could
  // not be decoded. A second play while one is in progress replaces its callbacks. View and configuration are not used.
  void play(const std::shared_ptr<QLHalvoView>& view, const std::shared_ptr<const QLHalvoSDKConfig>& config,
            Callback onSuccess, Callback onFailure) override;
  float volumeLevel() const override { return volumeLevel_; }
  QLHalvoSound lastSound() const override { return lastSound_; }
  std::string_view failureReason() const override {
    return inaudibleReason_ ? std::string_view(*inaudibleReason_) : std::string_view();
  }
  double duration(const QLHalvoSDKConfig& /*config*/) const override { return player_ ? player_->duration() : 0; }

  // Whether the last sound was heard and, if not, why; for diagnosis.
  bool soundPlayed() const { return soundPlayed_; }
  const std::optional<std::string>& inaudibleReason() const { return inaudibleReason_; }

  void audioPlayerDidFinishPlaying(AVAudioPlayer& player, bool successfully) override;
  void audioPlayerDecodeErrorDidOccur(AVAudioPlayer& player, const std::optional<NSError>& error) override;

 private:
  // Of the last play.
  struct Callbacks {
    Callback completion;
    Callback failure;
  };

  void finish(bool successfully);

  std::unique_ptr<AVAudioPlayer> player_;
  // Held while one is called: what it does may replace them or destroy this.
  std::shared_ptr<const Callbacks> callbacks_;
  float volumeLevel_ = 0;
  std::optional<std::string> inaudibleReason_;
  bool soundPlayed_ = false;
  QLHalvoSound lastSound_ = QLHalvoSound::none;
};

}  // namespace quellaro
