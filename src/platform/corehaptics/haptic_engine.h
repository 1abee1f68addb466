#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include "platform/corehaptics/actuator.h"
#include "platform/corehaptics/haptic_pattern.h"
#include "platform/dispatch/function.h"

namespace quellaro {

class CHHapticPatternPlayer;

struct CHHapticDeviceCapability {
  bool supportsHaptics = false;
};

enum class CHHapticEngineFinishedAction {
  StopEngine,
  LeaveEngineRunning,
};

// Told why the pattern broke off, or nothing when it was felt to its end.
using CHHapticFinishedHandler = Function<CHHapticEngineFinishedAction(const std::optional<NSError>&)>;

// Feels one pattern at a time on the process's actuator, on the main queue's time: a change that is due while the main
// queue is busy comes late, and what has passed by then is left out. Main thread. Destroying the engine silences it;
// the handler is then destroyed without being called.
class CHHapticEngine : public std::enable_shared_from_this<CHHapticEngine> {
 public:
  static CHHapticDeviceCapability capabilitiesForHardware();
  // The process's actuator in words, for whoever looks for a fault.
  static std::string deviceDescription();
  // The engine keeps the actuator that the process has now. It is idle until it is started.
  static Result<std::shared_ptr<CHHapticEngine>> initAndReturnError();
  // What everything in the process is felt by that begins from now on. Null restores the default: the kernel's
  // force-feedback devices.
  static void setActuator(std::shared_ptr<HapticActuator> actuator);

  // Takes hold of the actuator, unless the engine already has; the error says why it cannot.
  std::optional<NSError> startAndReturnError();
  bool isRunning() const { return session_ != nullptr; }
  // The handler of the next end, in place of any before: called once, on the main queue, when the pattern that is being
  // felt, or the next one that is started, has ended.
  void notifyWhenPlayersFinished(CHHapticFinishedHandler handler) { finishedHandler_ = std::move(handler); }
  Result<std::shared_ptr<CHHapticPatternPlayer>> createPlayerWithPattern(
      std::shared_ptr<const CHHapticPattern> pattern);

 private:
  friend class CHHapticPatternPlayer;
  struct Playback {
    std::shared_ptr<const CHHapticPattern> pattern;
    double start;
    std::uint64_t number;
  };

  explicit CHHapticEngine(std::shared_ptr<HapticActuator> actuator) : actuator_(std::move(actuator)) {}
  std::optional<NSError> play(std::shared_ptr<const CHHapticPattern> pattern);
  std::optional<NSError> step();
  void stepLater(double seconds);
  void finish(const std::optional<NSError>& error);

  std::shared_ptr<HapticActuator> actuator_;
  std::unique_ptr<ActuatorSession> session_;
  std::optional<Playback> playback_;
  std::uint64_t playbacks_ = 0;
  CHHapticFinishedHandler finishedHandler_;
};

}  // namespace quellaro
