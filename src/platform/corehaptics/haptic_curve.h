#pragma once

#include <cstddef>
#include <vector>

namespace quellaro {

// What is felt at one moment, both 0 to 1.
struct HapticSample {
  double intensity = 0;
  double sharpness = 0;
  friend bool operator==(const HapticSample&, const HapticSample&) = default;
};

// What is felt over time: sample k holds from k to k + 1 hundredths of a second. A motor takes longer than that to
// follow, and a game pad is told of a change that often at most.
struct HapticCurve {
  static constexpr double kSamplesPerSecond = 100;

  std::vector<HapticSample> samples;

  // Seconds. Divided, so that the time of a sample is the double that its decimal notation reads as.
  static double timeOf(std::size_t sample) { return static_cast<double>(sample) / kSamplesPerSecond; }
  double duration() const { return timeOf(samples.size()); }
};

}  // namespace quellaro
