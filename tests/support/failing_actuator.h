#pragma once

#include <memory>
#include <optional>

#include "platform/corehaptics/actuator.h"

namespace quellaro {

// An actuator that fails when the test says so.
class FailingActuator final : public HapticActuator {
 public:
  // How often isPresent() still answers yes.
  int timesPresent = 1000;
  std::optional<NSError> openError;
  std::optional<NSError> feelError;

  bool isPresent() override { return timesPresent-- > 0; }
  Result<std::unique_ptr<ActuatorSession>> open() override {
    if (openError) return *openError;
    return std::unique_ptr<ActuatorSession>(std::make_unique<Session>(*this));
  }

 private:
  struct Session final : ActuatorSession {
    explicit Session(FailingActuator& owner) : actuator(owner) {}
    std::optional<NSError> feel(const HapticSample&, double) override { return actuator.feelError; }
    FailingActuator& actuator;
  };
};

}  // namespace quellaro
