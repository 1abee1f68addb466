#pragma once

#include "types/component_status.h"

namespace quellaro {

// The haptics side of one play.
struct HapticsAnalytics {
  bool isEnabled = false;  // the host asked for haptics when preparing
  bool isSupported = false;
  ComponentStatus hapticsStatus = ComponentStatus::Not_Ready;
};

}  // namespace quellaro
