#pragma once

#include <memory>
#include <utility>

#include "platform/corehaptics/haptic_curve.h"
#include "platform/foundation/json/json_reader.h"

namespace quellaro {

// A haptic pattern, ready to be felt. Never changes; any thread.
class CHHapticPattern {
 public:
  // From the dictionary of an AHAP document, which is not needed afterwards. The error names the entry and the key that
  // the format does not allow.
  static Result<std::shared_ptr<const CHHapticPattern>> initWithDictionary(const JSONValue& dictionary);

  explicit CHHapticPattern(HapticCurve curve) : curve_(std::move(curve)) {}

  const HapticCurve& curve() const { return curve_; }
  // Seconds from the start to the end of the last event.
  double duration() const { return curve_.duration(); }

 private:
  HapticCurve curve_;
};

}  // namespace quellaro
