#pragma once

#include <memory>
#include <optional>
#include <span>

#include "platform/avfoundation/sound_source.h"

namespace halvo {

struct SoundLevels {
  double seconds = 0;
  std::optional<double> loudness;  // integrated, in LUFS; absent where nothing is heard
  double truePeak = 0;             // in dB of full scale
  double samplePeak = 0;           // likewise
};

// Whether this tool can measure at all: it is built without what measures where that is not installed.
bool canMeasureLoudness();

// Measures a sound that goes through it. One shorter than the 0.4 s that loudness is measured over is followed by
// silence.
class LoudnessMeter {
 public:
  // A single channel by itself, or as it is heard: from two speakers, twice as loud.
  enum class Mono { Once, Twice };

  static quellaro::Result<LoudnessMeter> make(const quellaro::SoundFormat& format, Mono mono);
  LoudnessMeter(LoudnessMeter&&) noexcept;
  LoudnessMeter& operator=(LoudnessMeter&&) noexcept;
  ~LoudnessMeter();

  void add(std::span<const float> samples);
  // Of all that went through; nothing can be added afterwards.
  SoundLevels levels();

 private:
  struct State;
  explicit LoudnessMeter(std::unique_ptr<State> state);
  std::unique_ptr<State> state_;
};

// Goes through the whole sound.
quellaro::Result<SoundLevels> measureSound(quellaro::SoundSource& sound);

}  // namespace halvo
