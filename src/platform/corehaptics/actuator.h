#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/corehaptics/haptic_curve.h"
#include "platform/foundation/error.h"

namespace quellaro {

// A hold on an actuator that is ready to move. Destroying it silences the actuator and lets it go.
class ActuatorSession {
 public:
  virtual ~ActuatorSession() = default;
  // What is to be felt from now on, until the next call, which is due after so many seconds: if that never comes, the
  // actuator falls silent by itself soon after. The error says why nothing more can be felt in this session.
  virtual std::optional<NSError> feel(const HapticSample& sample, double seconds) = 0;
};

// What moves. Main thread.
class HapticActuator {
 public:
  virtual ~HapticActuator() = default;
  // Whether there is any; one that may not be used counts.
  virtual bool isPresent() = 0;
  // What it is and how it stands, in words, for whoever looks for a fault.
  virtual std::string description() { return "an actuator of the host's own"; }
  virtual Result<std::unique_ptr<ActuatorSession>> open() = 0;
};

}  // namespace quellaro
