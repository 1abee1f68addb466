#pragma once

#include "platform/corehaptics/pattern_content.h"

namespace quellaro {

// One control's value over the whole pattern. Where changes overlap, the one that began last rules; of those that begin
// together, the one that stands last in the document.
class ControlTrack {
 public:
  // Takes the changes of this control out of those of a pattern. `initial` is the value before the first.
  ControlTrack(const std::vector<HapticControlChange>& changes, HapticControl control, double initial);

  double valueAt(double time) const;

 private:
  double initial_;
  // By beginning.
  std::vector<const HapticControlChange*> changes_;
};

}  // namespace quellaro
