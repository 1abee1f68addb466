// A host that has nothing but an installed tree. Plays the built-in cue on simulated devices and reports what went
// wrong.
#include <QuellaroHalvo/QuellaroHalvo.h>
#include <QuellaroHalvo/quellaro_halvo.h>

#include <algorithm>
#include <cstdio>
#include <system_error>

using namespace quellaro;

namespace {

int failures = 0;

void expect(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "not so: %s\n", what);
  ++failures;
}

// Draws the view whenever the main queue has done its work; counts pictures that show more than the backdrop.
struct Screen {
  std::shared_ptr<QLHalvoView> view = QLHalvoView::initWithFrame({{0, 0}, {120, 80}});
  Compositor compositor;
  Bitmap bitmap{120, 80};
  int picturesWithMark = 0;

  void refresh() {
    if (!view->needsDisplay()) return;
    view->display(compositor, bitmap);
    const auto isMark = [this](std::uint32_t pixel) { return pixel != bitmap.pixels.front(); };
    if (std::any_of(bitmap.pixels.begin(), bitmap.pixels.end(), isMark)) ++picturesWithMark;
  }
};

}  // namespace

int main() {
  setLibraryDirectory("library");
  quellaro_halvo_use_simulated_devices(1.0, true);
  std::string said;
  setConsoleSink([&](std::string_view text) { said += text; });
  int soundsEnded = 0;
  NSNotificationCenter::defaultCenter().addObserver(QLAudioSessionDeactivated,
                                                    [&](const std::string&) { ++soundsEnded; });

  Screen screen;
  MainQueue& queue = MainQueue::shared();
  queue.setIdleHandler([&] { screen.refresh(); });
  QLHalvoSwiftUIView(screen.view, QLHalvoBackground::white);
  const auto controller = QLHalvoController::make();
  const auto merchant = QLHalvoMerchant::make("Corner Shop", "US", std::nullopt, {"5411"}, std::nullopt);
  std::error_code answer = QLHalvoStatus::notPrepared;
  controller->prepare(QLHalvoType::animationAndSound, "Quellaro", QLHalvoEnvironment::primary, merchant, false,
                      [&](QLHalvoStatus prepared) {
                        answer = prepared;
                        if (prepared == QLHalvoStatus::success)
                          controller->play(screen.view, [&](QLHalvoStatus played) { answer = played; });
                      });
  queue.run(true);
  std::printf("%s\n", answer.message().c_str());
  expect(answer == QLHalvoStatus::success, "the cue plays");
  expect(controller->preparedHalvoCue() == "quellaro", "the name is normalised");
  expect(screen.picturesWithMark > 10, "the mark is seen");
  expect(said.find("===> ") != std::string::npos, "the console lines come here");
  expect(soundsEnded == 1, "the end of the sound is told");
  return failures == 0 ? 0 : 1;
}
