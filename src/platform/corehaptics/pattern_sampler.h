#pragma once

#include "platform/corehaptics/haptic_curve.h"
#include "platform/corehaptics/pattern_content.h"

namespace quellaro {

// The curve that a pattern feels like. Events begin at the nearest sample, and each is felt for at least one. The
// intensities of events that overlap add up, to 1 at most; their sharpness is the mean, weighted by their intensity.
// The controls have their values of the moment; those for times count at the beginning of an event. The curve ends with
// the last event, at limits::kHapticSeconds at the latest.
HapticCurve sampleHapticPattern(const HapticPatternContent& content);

}  // namespace quellaro
