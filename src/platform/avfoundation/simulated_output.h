#pragma once

#include "platform/avfoundation/audio_output.h"
#include "platform/foundation/text/numbers.h"

namespace quellaro {

// Plays to nobody: decodes each sound at the pace of the main queue's clock and reports its end when its last sample
// would have been heard. Needs nothing of the machine.
class SimulatedOutput final : public AudioOutput {
 public:
  explicit SimulatedOutput(float volume) : volume_(volume) {}

  std::shared_ptr<void> prepare() override { return nullptr; }
  Result<std::unique_ptr<Playback>> start(std::shared_ptr<SoundSource> sound, PlaybackEndHandler onEnd) override;
  float volume() override { return volume_; }
  std::string description() override { return "simulated, volume " + decimalDescription(volume_); }
  void setVolume(float volume) { volume_ = volume; }

 private:
  float volume_;
};

}  // namespace quellaro
