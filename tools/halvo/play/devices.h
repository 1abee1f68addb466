#pragma once

#include <optional>
#include <string>

namespace halvo {

// What a cue is heard and felt through: the machine's devices or, headless, simulated ones.
struct DeviceOptions {
  bool headless = false;
  // Of the simulated ones.
  std::optional<float> volume;
  bool noActuator = false;
};

// What is wrong with the text, or nothing.
std::optional<std::string> chooseVolume(const std::string& text, DeviceOptions& devices);
// Before anything plays.
void useDevices(const DeviceOptions& devices);

}  // namespace halvo
