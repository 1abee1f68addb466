#include "picture/moments.h"

#include <algorithm>
#include <cmath>

namespace halvo {

using namespace quellaro;

std::vector<double> largeChanges(std::span<const double> changes, const FrameTimes& times) {
  // A hundredth of the picture, and twice what changed in the tenth of a second before: less is motion.
  constexpr double kLeast = 0.01;
  constexpr double kTimes = 2;
  constexpr double kBefore = 0.1;
  std::vector<double> found;
  // The first is there from the beginning.
  for (std::size_t i = 1; i < std::min(changes.size(), times.starts.size()); ++i) {
    if (!times.starts[i] || changes[i] < kLeast) continue;
    double before = 0;
    for (std::size_t back = i; back > 1; --back) {
      const auto& start = times.starts[back - 1];
      if (!start || *times.starts[i] - *start > kBefore) break;
      before = std::max(before, changes[back - 1]);
    }
    if (changes[i] >= kTimes * before) found.push_back(*times.starts[i]);
  }
  return found;
}

std::vector<double> tapsOf(const HapticCurve& curve) {
  // A rise of intensity over what was felt in the samples just before.
  constexpr double kRise = 0.15;
  constexpr std::size_t kBefore = 3;
  std::vector<double> found;
  for (std::size_t i = 0; i < curve.samples.size(); ++i) {
    double before = 0;
    for (std::size_t back = i - std::min(i, kBefore); back < i; ++back)
      before = std::max(before, curve.samples[back].intensity);
    if (curve.samples[i].intensity >= before + kRise) found.push_back(HapticCurve::timeOf(i));
  }
  return found;
}

double nearestOf(std::span<const double> moments, double moment) {
  return *std::min_element(moments.begin(), moments.end(),
                           [&](double a, double b) { return std::fabs(a - moment) < std::fabs(b - moment); });
}

}  // namespace halvo
