#pragma once

#include <string>

#include "platform/corehaptics/haptic_curve.h"
#include "sheet/waveform.h"

namespace halvo {

// A strip of a picture in which something is shown over time, in pixels from the top left.
struct CurveLane {
  double left = 0;
  double top = 0;
  double width = 0;
  double height = 0;
  double duration = 0;  // seconds, from its left edge to its right one

  double bottom() const { return top + height; }
  double columnOf(double seconds) const;
};

// The step, in seconds, of a time axis whose ticks are at least that many pixels apart: 1, 2 or 5 of a decimal unit.
double tickStep(const CurveLane& lane, double room);

// SVG path data, to be filled.
struct SoundCurve {
  std::string peaks;
  std::string loudness;
};
SoundCurve soundCurve(const Waveform& sound, double start, const CurveLane& lane);

// SVG path data: strength, to be filled, and sharpness over what is felt, to be stroked.
struct HapticCurvePaths {
  std::string strength;
  std::string sharpness;
};
HapticCurvePaths hapticPaths(const quellaro::HapticCurve& curve, const CurveLane& lane);

}  // namespace halvo
