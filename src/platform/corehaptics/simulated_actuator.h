#pragma once

#include <memory>
#include <vector>

#include "platform/corehaptics/actuator.h"

namespace quellaro {

// Moves nothing and keeps what would have been felt. For tests and headless hosts, which choose it by name.
class SimulatedActuator final : public HapticActuator {
 public:
  // One stretch of what was felt; seconds on the main queue's clock since the session began.
  struct Felt {
    double time;
    HapticSample sample;
    friend bool operator==(const Felt&, const Felt&) = default;
  };

  // Absent: simulates hardware without haptics.
  explicit SimulatedActuator(bool isPresent = true)
      : isPresent_(isPresent), felt_(std::make_shared<std::vector<Felt>>()) {}

  bool isPresent() override { return isPresent_; }
  std::string description() override { return isPresent_ ? "simulated" : "simulated, absent"; }
  Result<std::unique_ptr<ActuatorSession>> open() override;

  // Of the session that was opened last, each stretch with what it begins with; the last one is silence.
  const std::vector<Felt>& felt() const { return *felt_; }

 private:
  bool isPresent_;
  std::shared_ptr<std::vector<Felt>> felt_;
};

}  // namespace quellaro
