#pragma once

#include <array>

#include "platform/avfoundation/audio_output.h"
#include "platform/avfoundation/pulse_connection.h"
#include "platform/dispatch/main_queue.h"

namespace quellaro {

// What the stream is, as it tells the server: a short sound that goes with something seen. By this role servers lower
// other streams meanwhile, or give sounds of this kind a volume of their own. Never "phone", which pauses music.
inline constexpr const char* kMediaRole = "event";

// One stream to the sound server. Everything but construction, start and destruction happens on the connection's
// thread.
class PulsePlayback final : public Playback {
 public:
  PulsePlayback(std::shared_ptr<PulseConnection> connection, std::shared_ptr<SoundSource> sound,
                PlaybackEndHandler onEnd);
  ~PulsePlayback() override;
  PulsePlayback(const PulsePlayback&) = delete;
  PulsePlayback& operator=(const PulsePlayback&) = delete;

  // Gives why the stream cannot be made; then nothing is reported.
  std::optional<NSError> start();

 private:
  void observeStream();
  void feed(std::size_t bytes);
  void drain();
  void expectProgress();
  void finish(const PlaybackEnd& end);
  void detach();

  std::shared_ptr<PulseConnection> connection_;
  std::shared_ptr<SoundSource> sound_;
  // Both empty once the end has been reported.
  PlaybackEndHandler onEnd_;
  PendingActivity activity_ = MainQueue::shared().beginActivity();
  pa_stream* stream_ = nullptr;
  pa_operation* drain_ = nullptr;
  pa_time_event* watchdog_ = nullptr;
  // A tenth of a second of the fastest sound, more than the server asks for at a time.
  std::array<float, 9600> samples_{};
};

}  // namespace quellaro
