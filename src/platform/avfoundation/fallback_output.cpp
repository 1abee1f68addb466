#include "platform/avfoundation/fallback_output.h"

#include <mutex>
#include <utility>

#include "platform/foundation/console.h"

namespace quellaro {

FallbackOutput::FallbackOutput(std::shared_ptr<AudioOutput> real, std::shared_ptr<AudioOutput> standIn)
    : real_(std::move(real)), standIn_(std::move(standIn)) {}

std::shared_ptr<void> FallbackOutput::prepare() { return real_->prepare(); }

Result<std::unique_ptr<Playback>> FallbackOutput::start(std::shared_ptr<SoundSource> sound, PlaybackEndHandler onEnd) {
  Result<std::unique_ptr<Playback>> playback = real_->start(sound, onEnd);
  lastStoodIn_ = !playback;
  if (playback) return playback;
  static std::once_flag said;
  std::call_once(said, [&] {
    logLine(LogLevel::Warning, "no sound is heard, only timed: " + playback.error().localizedDescription);
  });
  return standIn_->start(std::move(sound), std::move(onEnd));
}

float FallbackOutput::volume() { return (lastStoodIn_ ? standIn_ : real_)->volume(); }

}  // namespace quellaro
