#include "animation/halvo_animation_view.h"

#include <string>
#include <utility>

#include "animation/halvo_layer.h"
#include "platform/dispatch/guard.h"
#include "platform/dispatch/main_queue.h"
#include "platform/foundation/console.h"
#include "platform/foundation/text/numbers.h"

namespace quellaro {

namespace {

void printMoment(double seconds, const char* what) {
  print("===> " + decimalDescription(seconds) + " Animation " + what + " at " + decimalDescription(secondsSince1970()));
}

}  // namespace

struct QLHalvoAnimationView::Play {
  HalvoFrames frames;
  Callback completion;
  std::weak_ptr<QLHalvoAnimationView> view;
  // From the start to the end of the frame that was scheduled last.
  double scheduledSeconds = 0;
  // It could not be begun: what has been scheduled does nothing.
  bool isCalledOff = false;
};

std::shared_ptr<QLHalvoAnimationView> QLHalvoAnimationView::initWithFrame(CGRect frame) {
  return std::shared_ptr<QLHalvoAnimationView>(new QLHalvoAnimationView(frame));
}

std::shared_ptr<QLHalvoAnimationView> QLHalvoAnimationView::initWithCoder(const NSCoder& coder) {
  const auto frame = coder.decodeCGRectForKey(kFrameKey);
  return frame ? initWithFrame(*frame) : nullptr;
}

std::shared_ptr<CALayer> QLHalvoAnimationView::layerClass() { return std::make_shared<QLHalvoLayer>(); }

void QLHalvoAnimationView::playFrames(HalvoFrames frames, Callback completion) {
  if (frames.empty()) {
    if (completion) completion();
    return;
  }
  const auto play = std::make_shared<Play>();
  play->frames = std::move(frames);
  play->completion = std::move(completion);
  play->view = std::static_pointer_cast<QLHalvoAnimationView>(shared_from_this());
  Undo callOff([&] { play->isCalledOff = true; });
  showFrame(play->frames.front());
  printMoment(play->scheduledSeconds, "started");
  for (std::size_t i = 0; i < play->frames.size(); ++i) scheduleFrameTimer(play, i);
  callOff.keep();
}

void QLHalvoAnimationView::showFrame(const std::shared_ptr<const SVGDocument>& frame) {
  layer()->setSublayers({});
  setSvgDocument(frame);
  showLayer(frame->makeLayer());
  if (frameHandler_) frameHandler_();
}

void QLHalvoAnimationView::scheduleFrameTimer(const std::shared_ptr<Play>& play, std::size_t index) {
  if (!sdkConfig()) return;
  const std::optional<double> seconds = sdkConfig()->secondsOfFrame(index);
  if (!seconds) return;
  play->scheduledSeconds += *seconds;
  // All from the start and not each from the one before: a frame that comes late does not delay those after it.
  MainQueue::shared().asyncAfter(play->scheduledSeconds, [play, index] { advanceFrame(*play, index); });
}

void QLHalvoAnimationView::advanceFrame(const Play& play, std::size_t index) {
  if (play.isCalledOff) return;
  if (index + 1 < play.frames.size()) {
    if (const auto view = play.view.lock()) view->showFrame(play.frames[index + 1]);
    return;
  }
  if (play.completion) play.completion();
  printMoment(play.scheduledSeconds, "ended");
}

}  // namespace quellaro
