#pragma once

#include "platform/avfoundation/audio_output.h"

namespace quellaro {

// The output of a process that has chosen none: a real one and, for each sound that it cannot start, a simulated one,
// so that a cue keeps its timing on a machine that cannot sound. Says so on standard error the first time in the
// process.
class FallbackOutput final : public AudioOutput {
 public:
  FallbackOutput(std::shared_ptr<AudioOutput> real, std::shared_ptr<AudioOutput> standIn);

  std::shared_ptr<void> prepare() override;
  Result<std::unique_ptr<Playback>> start(std::shared_ptr<SoundSource> sound, PlaybackEndHandler onEnd) override;
  // Of the output that the last sound went to; before the first one, of the real one.
  float volume() override;
  std::string description() override { return real_->description(); }
  bool reachedNobody() const override { return lastStoodIn_; }

 private:
  std::shared_ptr<AudioOutput> real_;
  std::shared_ptr<AudioOutput> standIn_;
  bool lastStoodIn_ = false;
};

}  // namespace quellaro
