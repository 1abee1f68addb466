#pragma once

#include <memory>
#include <optional>
#include <utility>

#include "platform/corehaptics/haptic_engine.h"
#include "platform/corehaptics/haptic_pattern.h"

namespace quellaro {

// A pattern with the engine that plays it, which it does not keep alive. Main thread.
class CHHapticPatternPlayer {
 public:
  CHHapticPatternPlayer(std::weak_ptr<CHHapticEngine> engine, std::shared_ptr<const CHHapticPattern> pattern)
      : engine_(std::move(engine)), pattern_(std::move(pattern)) {}

  // From the beginning, in place of what the engine is playing. The only time there is is 0: at once. With an error,
  // nothing was started and the engine's finished handler will not be called for it. The pattern plays on when the
  // player is destroyed.
  std::optional<NSError> startAtTime(double time);
  // Of the pattern, in seconds.
  double duration() const { return pattern_->duration(); }

 private:
  std::weak_ptr<CHHapticEngine> engine_;
  std::shared_ptr<const CHHapticPattern> pattern_;
};

}  // namespace quellaro
