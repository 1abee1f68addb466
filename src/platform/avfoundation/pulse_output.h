#pragma once

#include <mutex>

#include "platform/avfoundation/audio_output.h"

namespace quellaro {

class PulseConnection;

// The sound server's default sink (PulseAudio, or PipeWire in its place). Never starts a server. Connects anew when the
// server that it knew has gone.
class PulseOutput final : public AudioOutput {
 public:
  std::shared_ptr<void> prepare() override;
  Result<std::unique_ptr<Playback>> start(std::shared_ptr<SoundSource> sound, PlaybackEndHandler onEnd) override;
  float volume() override;
  std::string description() override;

 private:
  // Null when none can be made.
  std::shared_ptr<PulseConnection> connection();

  std::mutex mutex_;
  // Held by those who prepared and by playbacks: without them no connection, and no thread.
  std::weak_ptr<PulseConnection> connection_;
};

}  // namespace quellaro
