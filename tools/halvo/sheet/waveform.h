#pragma once

#include <string>
#include <vector>

#include "platform/foundation/error.h"

namespace halvo {

// How loud a sound is over time, in steps short enough for a column of pixels.
struct Waveform {
  static constexpr double kStep = 0.001;  // seconds

  struct Step {
    float low = 0;
    float high = 0;
    float loudness = 0;  // root of the mean square
  };
  // All channels together; 1 is full scale.
  std::vector<Step> steps;
  // Where the sound goes on, but reading it stopped, to keep the picture within reason.
  bool isCut = false;
  std::vector<double> onsets;  // seconds: where something begins to sound

  double duration() const { return static_cast<double>(steps.size()) * kStep; }
  // The steps from `start` to `end` seconds taken together.
  Step between(double start, double end) const;
};

// Reads at most `seconds` of an MPEG audio file. What a damaged file holds before its damage counts.
quellaro::Result<Waveform> readWaveform(const std::string& path, double seconds);

}  // namespace halvo
