#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "platform/avfoundation/sound_source.h"

namespace halvo {

// Listens for where something begins to sound: a note, a beat, a word. Gives each moment to some milliseconds.
class OnsetListener {
 public:
  explicit OnsetListener(const quellaro::SoundFormat& format) : format_(format) {}

  void add(std::span<const float> samples);
  // Seconds, ascending, of all that went through.
  std::vector<double> onsets() const;

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
