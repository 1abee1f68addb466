#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "platform/avfoundation/sound_source.h"

namespace halvo {

// A moment at which something begins to sound.
struct Onset {
  double seconds = 0;
  double level = 0;   // dB of full scale, at its loudest right after
  double attack = 0;  // from 0 to 1: how much of its rise it takes at once
};

// Listens for where something begins to sound: a note, a beat, a word. Gives each moment to some milliseconds.
class OnsetListener {
 public:
  explicit OnsetListener(const quellaro::SoundFormat& format) : format_(format) {}

  void add(std::span<const float> samples);
  // Seconds, ascending, of all that went through.
  std::vector<double> onsets() const;
  // The same moments, and how they sound.
  std::vector<Onset> beginnings() const;

 private:
  void finishStep();

  quellaro::SoundFormat format_;
  std::vector<float> levels_;  // of each step, in dB of full scale
  std::vector<float> last_;    // the last sample of each channel
  double squares_ = 0;
  std::size_t frames_ = 0;  // since the beginning
  std::size_t count_ = 0;   // samples of the step
};

}  // namespace halvo
