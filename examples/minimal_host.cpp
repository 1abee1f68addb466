// The smallest host without a loop of its own: prepares the built-in cue and plays it once.
#include <QuellaroHalvo/QuellaroHalvo.h>

#include <cstdio>

using namespace quellaro;

int main() {
  const auto controller = QLHalvoController::make();
  const auto view = QLHalvoView::initWithFrame({{0, 0}, {480, 480}});
  const auto merchant = QLHalvoMerchant::make("Corner Shop", "US", "San Francisco", {"5411"}, std::nullopt);
  QLHalvoStatus last{};
  const auto play = [&](QLHalvoStatus prepared) {
    last = prepared;
    if (prepared != QLHalvoStatus::success) return MainQueue::shared().stop();
    controller->play(view, [&](QLHalvoStatus played) {
      last = played;
      MainQueue::shared().stop();
    });
  };
  controller->prepare(QLHalvoType::animationAndSound, "quellaro", QLHalvoEnvironment::primary, merchant, false, play);
  MainQueue::shared().run();
  // The exit waits for nothing: a report of the plays, when one is due, goes out after the answer.
  MainQueue::shared().runUntilIdle(5000);
  std::printf("%d\n", static_cast<int>(last));
  return last == QLHalvoStatus::success ? 0 : 1;
}
