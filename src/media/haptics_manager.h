#pragma once

#include <memory>
#include <string>
#include <utility>

#include "media/haptics_manager_protocol.h"
#include "platform/corehaptics/haptic_engine.h"
#include "platform/corehaptics/haptic_pattern_player.h"

namespace quellaro {

// The haptic pattern of a cue: loaded when the cue is prepared, felt when it is played. The engine runs only while a
// pattern is felt. Main thread. A play that is under way when the manager is destroyed ends with an error.
class HapticsManager final : public HapticsManagerProtocol {
 public:
  // Prints what is wrong when there is an error.
  static Result<std::shared_ptr<HapticsManagerProtocol>> make();

  void prepare(const std::string& cueName, const HapticsStatusWriter& setStatus,
               const std::shared_ptr<DispatchGroup>& group) override;
  void play(const HapticsStatusWriter& setStatus, const std::shared_ptr<DispatchGroup>& group) override;
  std::string_view failureReason() const override { return failureReason_; }
  double duration() const override { return player_ ? player_->duration() : 0; }

 private:
  std::optional<NSError> start(CHHapticFinishedHandler onEnd);
  explicit HapticsManager(std::shared_ptr<CHHapticEngine> engine) : hapticsEngine_(std::move(engine)) {}

  std::shared_ptr<CHHapticEngine> hapticsEngine_;
  // Of the last pattern that could be prepared; each play starts it again.
  std::shared_ptr<CHHapticPatternPlayer> player_;
  std::string failureReason_;
};

}  // namespace quellaro
