#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "picture/frame_times.h"
#include "platform/corehaptics/haptic_curve.h"

namespace halvo {

// Where people notice that something happens, in seconds from the start of a play, ascending.
struct Moments {
  std::vector<double> pictures;  // the picture changes much more than it did just before
  std::vector<double> sounds;    // something begins to sound
  std::vector<double> taps;      // something begins to be felt

  bool areEmpty() const { return pictures.empty() && sounds.empty() && taps.empty(); }
};

// `changes`: of each frame since the one before it, 0 to 1.
std::vector<double> largeChanges(std::span<const double> changes, const FrameTimes& times);
std::vector<double> tapsOf(const quellaro::HapticCurve& curve);

// The nearest of them; they must not be empty.
double nearestOf(std::span<const double> moments, double moment);

}  // namespace halvo
