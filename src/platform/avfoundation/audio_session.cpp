#include "platform/avfoundation/audio_session.h"

#include <utility>

#include "platform/avfoundation/fallback_output.h"
#include "platform/avfoundation/pulse_output.h"
#include "platform/avfoundation/simulated_output.h"

namespace quellaro {

namespace {

// The platform's code for an argument that it cannot use.
constexpr std::int64_t kBadParameter = -50;

std::shared_ptr<AudioOutput> makeDefaultOutput() {
  return std::make_shared<FallbackOutput>(std::make_shared<PulseOutput>(), std::make_shared<SimulatedOutput>(0.0F));
}

}  // namespace

AVAudioSession& AVAudioSession::sharedInstance() {
  // Never destroyed: threads that the exit leaves behind may still ask it.
  static AVAudioSession& session = *new AVAudioSession;  // NOLINT(cppcoreguidelines-owning-memory)
  return session;
}

AVAudioSession::AVAudioSession() : output_(makeDefaultOutput()) {}

std::optional<NSError> AVAudioSession::setCategory(std::string_view category, std::string_view mode,
                                                   AVAudioSessionCategoryOptions options) {
  if (category != AVAudioSessionCategoryAmbient || mode != AVAudioSessionModeDefault)
    return NSError{"NSOSStatusErrorDomain", kBadParameter, "The audio session offers no such category or mode."};
  const std::lock_guard lock(mutex_);
  category_ = category;
  options_ = options;
  return std::nullopt;
}

std::optional<NSError> AVAudioSession::setActive(bool active) {
  const std::lock_guard lock(mutex_);
  active_ = active;
  return std::nullopt;
}

std::string AVAudioSession::category() const {
  const std::lock_guard lock(mutex_);
  return category_;
}

AVAudioSessionCategoryOptions AVAudioSession::categoryOptions() const {
  const std::lock_guard lock(mutex_);
  return options_;
}

bool AVAudioSession::isActive() const {
  const std::lock_guard lock(mutex_);
  return active_;
}

float AVAudioSession::outputVolume() const { return output()->volume(); }

void AVAudioSession::setOutput(std::shared_ptr<AudioOutput> output) {
  if (!output) output = makeDefaultOutput();
  const std::lock_guard lock(mutex_);
  output_ = std::move(output);
}

std::shared_ptr<AudioOutput> AVAudioSession::output() const {
  const std::lock_guard lock(mutex_);
  return output_;
}

}  // namespace quellaro
