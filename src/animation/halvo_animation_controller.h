#pragma once

#include <optional>
#include <string>

#include "animation/halvo_animation_view.h"
#include "platform/foundation/error.h"
#include "types/controller_protocol.h"

namespace quellaro {

// The animation of a cue: loads its frames and has the host's view show them.
class QLHalvoAnimationController : public QLHalvoControllerProtocol {
 public:
  // Reads and parses the frames, and calls back before it returns. Not while a play is being started.
  void prepare(const std::string& cueName, Callback onSuccess, Callback onFailure) override;
  // Calls onSuccess when the last frame's time has run out, at once when there are no frames, and never when the
  // configuration has no time for the last frame or there is no view. onFailure is not called.
  void play(const std::shared_ptr<QLHalvoView>& view, const std::shared_ptr<const QLHalvoSDKConfig>& config,
            Callback onSuccess, Callback onFailure) override;

  std::string_view failureReason() const override { return failureReason_; }
  double duration(const QLHalvoSDKConfig& config) const override;

  // Replaces the frames with those of an animation.json. A load that fails leaves none, and tells why.
  std::optional<NSError> loadFrames(const std::string& filePath);
  const HalvoFrames& animationElements() const { return animationElements_; }

 private:
  HalvoFrames animationElements_;
  std::string failureReason_;
};

}  // namespace quellaro
