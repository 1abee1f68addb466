#pragma once

#include <cstddef>
#include <span>

#include "platform/foundation/error.h"

namespace quellaro {

struct SoundFormat {
  unsigned rate = 0;  // sample frames per second
  unsigned channels = 0;
  friend bool operator==(const SoundFormat&, const SoundFormat&) = default;
};

// A sound as samples, produced while they are asked for. One thread at a time.
class SoundSource {
 public:
  virtual ~SoundSource() = default;

  // Never changes.
  virtual SoundFormat format() const = 0;
  // Fills `samples` (interleaved, 1.0 is full scale; room for whole sample frames) and gives how many it filled: all of
  // them, except where the sound ends, and 0 after its end. An error ends the sound: later reads give it again.
  virtual Result<std::size_t> read(std::span<float> samples) = 0;
};

}  // namespace quellaro
