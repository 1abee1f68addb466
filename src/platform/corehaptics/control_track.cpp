#include "platform/corehaptics/control_track.h"

#include <algorithm>
#include <iterator>

namespace quellaro {

namespace {

double beginningOf(const HapticControlChange& change) { return change.points.front().time; }

// From the first point's time on.
double valueAlong(const std::vector<HapticControlPoint>& points, double time) {
  const auto next = std::upper_bound(points.begin(), points.end(), time,
                                     [](double t, const HapticControlPoint& point) { return t < point.time; });
  const HapticControlPoint& before = *std::prev(next);
  if (next == points.end()) return before.value;
  return before.value + (next->value - before.value) * (time - before.time) / (next->time - before.time);
}

}  // namespace

ControlTrack::ControlTrack(const std::vector<HapticControlChange>& changes, HapticControl control, double initial)
    : initial_(initial) {
  for (const HapticControlChange& change : changes)
    if (change.control == control) changes_.push_back(&change);
  // Changes that begin together stay in the order they are written in.
  std::sort(changes_.begin(), changes_.end(),
            [](const auto* a, const auto* b) { return std::pair(beginningOf(*a), a) < std::pair(beginningOf(*b), b); });
}

double ControlTrack::valueAt(double time) const {
  const auto next = std::upper_bound(changes_.begin(), changes_.end(), time,
                                     [](double t, const auto* change) { return t < beginningOf(*change); });
  return next == changes_.begin() ? initial_ : valueAlong((*std::prev(next))->points, time);
}

}  // namespace quellaro
