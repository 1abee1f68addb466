#include "platform/corehaptics/haptic_pattern_player.h"

#include "platform/corehaptics/haptic_error.h"

namespace quellaro {

std::optional<NSError> CHHapticPatternPlayer::startAtTime(double time) {
  if (time != 0) return hapticError(CHHapticErrorCode::invalidTime, "A haptic pattern can only be started at once");
  const auto engine = engine_.lock();
  if (!engine) return hapticError(CHHapticErrorCode::engineNotRunning, "The haptic engine is gone");
  return engine->play(pattern_);
}

}  // namespace quellaro
