#pragma once

#include <vector>

// A haptic pattern as its document tells it, times in seconds from the start of the pattern.
namespace quellaro {

// How strongly an event is felt over its life, as a share of its intensity. It rises over `attack`, is held to the end
// of the event and fades over `release` after that. One that is not sustained fades after the attack already, over
// `decay` or, where that is 0, to the end of the event. All fading and rising is linear.
struct HapticEnvelope {
  double attack = 0;
  double decay = 0;
  double release = 0;
  bool isSustained = true;
};

struct HapticEvent {
  double time = 0;
  double duration = 0;
  // Sound is not felt: such an event only takes its time.
  bool isFelt = true;
  double intensity = 1;
  double sharpness = 0.5;
  HapticEnvelope envelope;
};

// A click has no duration of its own. This one is long enough for a motor to be felt.
inline constexpr double kTransientSeconds = 0.03;

enum class HapticControl {
  Intensity,  // multiplies that of the events
  Sharpness,  // is added to that of the events, as the rest are to the times of events that begin under them
  AttackTime,
  DecayTime,
  ReleaseTime,
};

struct HapticControlPoint {
  double time = 0;
  double value = 0;
};

// A control's way from its first point to its last, straight between them, and on at the last value. A change at one
// moment is a way of a single point. Times never decrease.
struct HapticControlChange {
  HapticControl control = HapticControl::Intensity;
  std::vector<HapticControlPoint> points;
};

struct HapticPatternContent {
  std::vector<HapticEvent> events;
  // In document order.
  std::vector<HapticControlChange> changes;
};

}  // namespace quellaro
