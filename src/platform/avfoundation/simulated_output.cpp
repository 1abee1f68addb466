#include "platform/avfoundation/simulated_output.h"

#include <utility>
#include <vector>

#include "platform/dispatch/guard.h"
#include "platform/dispatch/main_queue.h"

namespace quellaro {

namespace {

// How much is decoded at a time, in seconds.
constexpr unsigned kSliceSeconds = 1;

struct Run : std::enable_shared_from_this<Run> {
  std::shared_ptr<SoundSource> sound;
  PlaybackEndHandler onEnd;
  double startTime = 0;
  std::vector<float> slice;
  std::uint64_t framesPlayed = 0;

  // A step of this that has no memory ends the sound.
  void step(void (Run::*work)()) {
    if (!attempt([&] { (this->*work)(); })) onEnd({PlaybackEnd::Outcome::OutputFailed, {}});
  }

  void playSlice() {
    const Result<std::size_t> filled = sound->read(slice);
    if (!filled) return onEnd({PlaybackEnd::Outcome::Undecodable, filled.error()});
    const SoundFormat format = sound->format();
    framesPlayed += *filled / format.channels;
    const double heardAt = startTime + static_cast<double>(framesPlayed) / format.rate;
    const bool isLast = *filled < slice.size();
    MainQueue& queue = MainQueue::shared();
    queue.asyncAfter(heardAt - queue.clock().now(), [weak = weak_from_this(), isLast] {
      const std::shared_ptr<Run> run = weak.lock();
      if (run) run->step(isLast ? &Run::finish : &Run::playSlice);
    });
  }

  void finish() {
    // An error may still hide behind a short read.
    const Result<std::size_t> rest = sound->read(slice);
    if (rest)
      onEnd({PlaybackEnd::Outcome::Heard, {}});
    else
      onEnd({PlaybackEnd::Outcome::Undecodable, rest.error()});
  }
};

class SimulatedPlayback final : public Playback {
 public:
  explicit SimulatedPlayback(std::shared_ptr<Run> run) : run_(std::move(run)) {}

 private:
  std::shared_ptr<Run> run_;
};

}  // namespace

Result<std::unique_ptr<Playback>> SimulatedOutput::start(std::shared_ptr<SoundSource> sound, PlaybackEndHandler onEnd) {
  auto run = std::make_shared<Run>();
  const SoundFormat format = sound->format();
  run->slice.resize(std::size_t{kSliceSeconds} * format.rate * format.channels);
  run->sound = std::move(sound);
  run->onEnd = std::move(onEnd);
  run->startTime = MainQueue::shared().clock().now();
  MainQueue::shared().async([weak = std::weak_ptr(run)] {
    if (const std::shared_ptr<Run> held = weak.lock()) held->step(&Run::playSlice);
  });
  return std::unique_ptr<Playback>(std::make_unique<SimulatedPlayback>(std::move(run)));
}

}  // namespace quellaro
