#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/avfoundation/sound_source.h"
#include "platform/dispatch/function.h"

namespace quellaro {

struct PlaybackEnd {
  enum class Outcome {
    Heard,         // the last sample has left the loudspeaker, as far as the output can tell
    OutputFailed,  // the output broke down on the way
    Undecodable,   // the source gave an error
  };
  Outcome outcome = Outcome::Heard;
  std::optional<NSError> error;
};

// Called at most once, on any thread.
using PlaybackEndHandler = Function<void(const PlaybackEnd&)>;

// A sound on its way to the listener. Destroying it silences the sound at once; nothing is reported from then on. Never
// destroyed by its own end handler.
class Playback {
 public:
  virtual ~Playback() = default;
};

// Where sounds go. Calls come from one thread at a time.
class AudioOutput {
 public:
  virtual ~AudioOutput() = default;

  // Begins whatever has to be up before a sound can start, without waiting for it. It stays up while the answer (which
  // may be null) is held.
  virtual std::shared_ptr<void> prepare() = 0;
  // Each playback that could be started and is not destroyed reports its end exactly once. The error says why none
  // could.
  virtual Result<std::unique_ptr<Playback>> start(std::shared_ptr<SoundSource> sound, PlaybackEndHandler onEnd) = 0;
  // 0.0 to 1.0; a muted output counts as 0.0, and so does one that nobody hears.
  virtual float volume() = 0;
  // Whether the last sound was only timed, for want of an output that could be heard.
  virtual bool reachedNobody() const { return false; }
  // What it is and how it stands, in words, for whoever looks for a fault. May wait as long as volume() may.
  virtual std::string description() { return "an output of the host's own"; }
};

}  // namespace quellaro
