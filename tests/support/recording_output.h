#pragma once

#include <vector>

#include "platform/avfoundation/audio_output.h"

namespace quellaro {

// An output that starts what it is given and ends it when the test says so.
class RecordingOutput final : public AudioOutput {
 public:
  struct Started {
    std::shared_ptr<SoundSource> sound;
    PlaybackEndHandler onEnd;
    // Expires when the playback is destroyed.
    std::weak_ptr<Playback> playback;
  };

  std::shared_ptr<void> prepare() override {
    ++prepared;
    return nullptr;
  }
  Result<std::unique_ptr<Playback>> start(std::shared_ptr<SoundSource> sound, PlaybackEndHandler onEnd) override {
    if (startError) return *startError;
    auto token = std::make_shared<Playback>();
    started.push_back({std::move(sound), std::move(onEnd), token});
    return std::unique_ptr<Playback>(std::make_unique<Handle>(std::move(token)));
  }
  float volume() override { return volumeLevel; }
  bool reachedNobody() const override { return isTimedOnly; }

  std::vector<Started> started;
  std::optional<NSError> startError;
  float volumeLevel = 1;
  bool isTimedOnly = false;
  int prepared = 0;

 private:
  struct Handle final : Playback {
    explicit Handle(std::shared_ptr<Playback> held) : token(std::move(held)) {}
    std::shared_ptr<Playback> token;
  };
};

}  // namespace quellaro
