#pragma once

#include <memory>
#include <vector>

#include "assets/sdk_config.h"
#include "platform/dispatch/function.h"
#include "svg/svg_view.h"
#include "types/controller_protocol.h"

namespace quellaro {

// The frames of a cue, in playing order.
using HalvoFrames = std::vector<std::shared_ptr<const SVGDocument>>;

// Shows a cue's frames one after the other, at the times that its play configuration sets. Main thread only.
class QLHalvoAnimationView : public SVGView {
 public:
  static std::shared_ptr<QLHalvoAnimationView> initWithFrame(CGRect frame);
  // Null when the archive holds no frame.
  static std::shared_ptr<QLHalvoAnimationView> initWithCoder(const NSCoder& coder);

  const std::shared_ptr<const QLHalvoSDKConfig>& sdkConfig() const { return sdkConfig_; }
  void setSdkConfig(std::shared_ptr<const QLHalvoSDKConfig> config) { sdkConfig_ = std::move(config); }

  // Shows the first frame at once, each other when the time of the one before it has run out, and calls the completion
  // (if there is one) when the last frame's time has; that frame stays. With no frames it is called at once. Frame k's
  // time is under "Frame_k"; without one, frame k + 1 is never shown, or, of the last frame, the completion never
  // called. Nothing stops a play: when the view is gone only the completion is left of it.
  void playFrames(HalvoFrames frames, Callback completion);

  // Called each time a frame has been shown, for whoever draws every one of them.
  void setFrameHandler(Function<void()> handler) { frameHandler_ = std::move(handler); }

 protected:
  static std::shared_ptr<CALayer> layerClass();
  explicit QLHalvoAnimationView(CGRect frame) : SVGView(frame, &QLHalvoAnimationView::layerClass) {}

 private:
  // What the timers of one play share.
  struct Play;

  void showFrame(const std::shared_ptr<const SVGDocument>& frame);
  void scheduleFrameTimer(const std::shared_ptr<Play>& play, std::size_t index);
  // When the time of the frame with this index has run out; the view may be gone.
  static void advanceFrame(const Play& play, std::size_t index);

  std::shared_ptr<const QLHalvoSDKConfig> sdkConfig_;
  Function<void()> frameHandler_;
};

}  // namespace quellaro
