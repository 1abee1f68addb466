#pragma once

#include <memory>
#include <utility>

#include "platform/corehaptics/actuator.h"
#include "platform/corehaptics/input_devices.h"

namespace quellaro {

// The rumble motors of the first of the kernel's force-feedback devices that has them and may be used: dull is felt by
// the strong motor, sharp by the weak one, what lies between by both. A device may come and go at any time; a session
// stays with the one it found.
class EvdevActuator final : public HapticActuator {
 public:
  explicit EvdevActuator(std::shared_ptr<InputDevices> devices) : devices_(std::move(devices)) {}

  bool isPresent() override;
  std::string description() override;
  Result<std::unique_ptr<ActuatorSession>> open() override;

 private:
  std::shared_ptr<InputDevices> devices_;
};

}  // namespace quellaro
