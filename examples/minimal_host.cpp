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
  std::printf("%d\n", static_cast<int>(last));
  return last == QLHalvoStatus::success ? 0 : 1;
}
