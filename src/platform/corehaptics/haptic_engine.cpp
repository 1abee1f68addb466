#include "platform/corehaptics/haptic_engine.h"

#include <algorithm>
#include <cmath>

#include "platform/corehaptics/evdev_actuator.h"
#include "platform/corehaptics/haptic_error.h"
#include "platform/corehaptics/haptic_pattern_player.h"
#include "platform/dispatch/main_queue.h"

namespace quellaro {

namespace {

// Forgives what times lose as binary fractions.
constexpr double kSampleTolerance = 1e-6;
// Below what the kernel takes for one effect.
constexpr std::size_t kLongestStretch = static_cast<std::size_t>(10 * HapticCurve::kSamplesPerSecond);

std::shared_ptr<HapticActuator>& processActuator() {
  static std::shared_ptr<HapticActuator> actuator;
  if (!actuator) actuator = std::make_shared<EvdevActuator>(std::make_shared<SystemInputDevices>());
  return actuator;
}

double now() { return MainQueue::shared().clock().now(); }

// Where what is felt at `first` changes.
std::size_t endOfStretch(const std::vector<HapticSample>& samples, std::size_t first) {
  const std::size_t limit = std::min(samples.size(), first + kLongestStretch);
  std::size_t end = first + 1;
  while (end < limit && samples[end] == samples[first]) ++end;
  return end;
}

}  // namespace

CHHapticDeviceCapability CHHapticEngine::capabilitiesForHardware() { return {processActuator()->isPresent()}; }

std::string CHHapticEngine::deviceDescription() { return processActuator()->description(); }

void CHHapticEngine::setActuator(std::shared_ptr<HapticActuator> actuator) { processActuator() = std::move(actuator); }

Result<std::shared_ptr<CHHapticEngine>> CHHapticEngine::initAndReturnError() {
  const std::shared_ptr<HapticActuator> actuator = processActuator();
  if (!actuator->isPresent())
    return hapticError(CHHapticErrorCode::notSupported, "This device does not support haptics");
  return std::shared_ptr<CHHapticEngine>(new CHHapticEngine(actuator));
}

std::optional<NSError> CHHapticEngine::startAndReturnError() {
  if (session_) return std::nullopt;
  Result<std::unique_ptr<ActuatorSession>> session = actuator_->open();
  if (!session) return session.error();
  session_ = std::move(*session);
  return std::nullopt;
}

Result<std::shared_ptr<CHHapticPatternPlayer>> CHHapticEngine::createPlayerWithPattern(
    std::shared_ptr<const CHHapticPattern> pattern) {
  return std::make_shared<CHHapticPatternPlayer>(weak_from_this(), std::move(pattern));
}

std::optional<NSError> CHHapticEngine::play(std::shared_ptr<const CHHapticPattern> pattern) {
  if (!session_) return hapticError(CHHapticErrorCode::engineNotRunning, "The haptic engine is not running");
  playback_ = Playback{std::move(pattern), now(), ++playbacks_};
  if (playback_->pattern->curve().samples.empty()) {
    stepLater(0);
    return std::nullopt;
  }
  std::optional<NSError> error = step();
  if (error) {
    playback_.reset();
    session_.reset();
  }
  return error;
}

// Makes felt what is due now and comes back when that changes.
std::optional<NSError> CHHapticEngine::step() {
  const std::vector<HapticSample>& samples = playback_->pattern->curve().samples;
  const double elapsed = std::max(0.0, now() - playback_->start);
  const double position = elapsed * HapticCurve::kSamplesPerSecond + kSampleTolerance;
  if (position >= static_cast<double>(samples.size())) {
    finish(session_->feel({}, 0));
    return std::nullopt;
  }
  const auto first = static_cast<std::size_t>(position);
  const double seconds = std::max(0.0, HapticCurve::timeOf(endOfStretch(samples, first)) - elapsed);
  if (std::optional<NSError> error = session_->feel(samples[first], seconds)) return error;
  stepLater(seconds);
  return std::nullopt;
}

void CHHapticEngine::stepLater(double seconds) {
  MainQueue::shared().asyncAfter(seconds, [weak = weak_from_this(), number = playback_->number] {
    const auto self = weak.lock();
    if (!self || !self->playback_ || self->playback_->number != number) return;
    if (const std::optional<NSError> error = self->step()) self->finish(error);
  });
}

void CHHapticEngine::finish(const std::optional<NSError>& error) {
  playback_.reset();
  // What has failed once is of no more use; the next start finds what there is then.
  if (error) session_.reset();
  const CHHapticFinishedHandler handler = std::exchange(finishedHandler_, nullptr);
  const bool stops = handler && handler(error) == CHHapticEngineFinishedAction::StopEngine;
  if (stops && !playback_) session_.reset();
}

}  // namespace quellaro
