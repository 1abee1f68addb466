#include "platform/corehaptics/simulated_actuator.h"

#include <utility>

#include "platform/corehaptics/haptic_error.h"
#include "platform/dispatch/main_queue.h"

namespace quellaro {

namespace {

double now() { return MainQueue::shared().clock().now(); }

class RecordingSession final : public ActuatorSession {
 public:
  explicit RecordingSession(std::shared_ptr<std::vector<SimulatedActuator::Felt>> felt)
      : felt_(std::move(felt)), start_(now()) {}
  ~RecordingSession() override { feel({}, 0); }

  std::optional<NSError> feel(const HapticSample& sample, double /*seconds*/) override {
    const HapticSample before = felt_->empty() ? HapticSample{} : felt_->back().sample;
    if (sample != before) felt_->push_back({now() - start_, sample});
    return std::nullopt;
  }

 private:
  std::shared_ptr<std::vector<SimulatedActuator::Felt>> felt_;
  double start_;
};

}  // namespace

Result<std::unique_ptr<ActuatorSession>> SimulatedActuator::open() {
  if (!isPresent_) return hapticError(CHHapticErrorCode::notSupported, "There is no haptic actuator");
  felt_ = std::make_shared<std::vector<Felt>>();
  return std::unique_ptr<ActuatorSession>(std::make_unique<RecordingSession>(felt_));
}

}  // namespace quellaro
