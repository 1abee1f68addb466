#include "play/devices.h"

#include <memory>

#include "platform/avfoundation/audio_session.h"
#include "platform/avfoundation/simulated_output.h"
#include "platform/corehaptics/haptic_engine.h"
#include "platform/corehaptics/simulated_actuator.h"
#include "platform/foundation/text/numbers.h"

namespace halvo {

std::optional<std::string> chooseVolume(const std::string& text, DeviceOptions& devices) {
  const std::optional<float> volume = quellaro::floatFromText(text);
  if (!volume || !(*volume >= 0 && *volume <= 1)) return "a number from 0.0 to 1.0 is needed";
  devices.volume = *volume;
  return std::nullopt;
}

void useDevices(const DeviceOptions& devices) {
  if (!devices.headless) return;
  using namespace quellaro;
  AVAudioSession::sharedInstance().setOutput(std::make_shared<SimulatedOutput>(devices.volume.value_or(1)));
  CHHapticEngine::setActuator(std::make_shared<SimulatedActuator>(!devices.noActuator));
}

}  // namespace halvo
