// A host in C++ that uses every declaration of every installed header, built by itself: with nothing of the library's
// insides, and a second time with the standard library's debug mode and the undefined-behaviour checks.
#include <QuellaroHalvo/QuellaroHalvo.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

using namespace quellaro;

namespace {

void expect(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "failed: %s\n", what);
  std::exit(1);
}
#define EXPECT(condition) expect(condition, #condition)

void everyStatusIsAnErrorOfItsOwn() {
  for (const std::int64_t raw : {800, 801, 901, 902, 903, 904, 905, 906, 907, 908, 909, 910}) {
    const auto status = halvoStatusFromRawValue(raw);
    EXPECT(status && rawValueOf(*status) == raw && nameOf(*status) != "unknown" && !sentenceOf(*status).empty());
  }
  EXPECT(!halvoStatusFromRawValue(802));
  const std::error_code error = QLHalvoStatus::notPrepared;
  EXPECT(error.value() == 908 && error.category() == halvoStatusCategory() && error.message().size() > 5);
  EXPECT(error.category().name() == QLHalvoStatusDomain && error == make_error_code(QLHalvoStatus::notPrepared));
}

void aMerchantHasWhatItWasGiven() {
  EXPECT(!QLHalvoMerchant::make("", "US", std::nullopt, {"5411"}, std::nullopt));
  const auto merchant = QLHalvoMerchant::make("My_Shop - 1", "US", "Bern", {"5411", "5999"}, std::nullopt);
  EXPECT(merchant->merchantName == "My_Shop - 1" && merchant->countryCode == "US" && merchant->city == "Bern");
  EXPECT(merchant->merchantCategoryCodes.back() == "5999" && merchant->merchantId == "myshop1");
  EXPECT(merchant->description() == "myshop1-My_Shop - 1-[\"5411\", \"5999\"]");
  const auto other = QLHalvoMerchant::make("Else", "US", "Bern", {"1"}, "myshop1");
  EXPECT(*merchant == *other && merchant->hash() == other->hash() && merchant->handle() != other->handle());
}

void aViewIsDrawnIntoTheHostsPixels() {
  EXPECT(!QLHalvoView::initWithFrame({{0, 0}, {-1, 2}}));
  const auto view = QLHalvoView::make();
  EXPECT(view->setFrame({{2, 3}, {8, 6}}) == quellaro_halvo_result_ok && view->frame().size.height == 6);
  EXPECT(view->setBackground(QLHalvoBackground::white) == quellaro_halvo_result_ok);
  EXPECT(view->layoutSubviews() == quellaro_halvo_result_ok && view->needsDisplay() && view->handle() != nullptr);
  int told = 0;
  EXPECT(view->setNeedsDisplayHandler([&] {
    ++told;
    view->setNeedsDisplayHandler({});  // while it runs
    std::vector<std::uint32_t> pixels(12 * 10);
    EXPECT(view->draw(pixels.data(), 12, 10, 12 * 4) == quellaro_halvo_result_ok);
    for (std::size_t i = 0; i < pixels.size(); ++i)
      EXPECT((pixels[i] != 0) == (i % 12 >= 2 && i % 12 < 10 && i / 12 >= 3 && i / 12 < 9));
  }) == quellaro_halvo_result_ok);
  MainQueue::shared().drain();
  EXPECT(told == 1 && !view->needsDisplay());

  NSCoder coder;
  EXPECT(!QLHalvoView::initWithCoder(coder) && view->encodeWithCoder(coder) == quellaro_halvo_result_ok);
  const QLHalvoSwiftUIView wrapper(QLHalvoView::initWithCoder(coder), QLHalvoBackground::white);
  wrapper.updateUIView(wrapper.makeUIView());
  EXPECT(wrapper.makeUIView() == wrapper.view && wrapper.view->background() == QLHalvoBackground::white);
}

// Prepares and plays; the completions drop the last reference, throw, and start the next call.
void aCueIsPreparedAndPlayed() {
  MainQueue& queue = MainQueue::shared();
  std::string printed;
  EXPECT(setConsoleSink([&](std::string_view text) { printed += text; }) == quellaro_halvo_result_ok);
  int logged = 0;
  EXPECT(setLogSink([&](QLHalvoLogLevel level, std::string_view text) {
           logged += level == QLHalvoLogLevel::error && text.find("a host's own") != text.npos;
         }) == quellaro_halvo_result_ok);
  int deactivations = 0;
  const auto observation = std::make_unique<AudioSessionObservation>([&] { ++deactivations; });
  EXPECT(QLAudioSessionDeactivated == std::string("QLAudioSessionDeactivated"));

  auto controller = QLHalvoController::make();
  const auto view = QLHalvoView::initWithFrame({{0, 0}, {40, 40}});
  const auto merchant = QLHalvoMerchant::make("Shop", "US", std::nullopt, {"5411"}, "");
  const auto prepare = [&](const HalvoCompletion& completion) {
    return controller->prepare(QLHalvoType::soundOnly, "Quellaro", QLHalvoEnvironment::secondary, merchant, false,
                               completion);
  };
  EXPECT(controller->prepare(QLHalvoType::soundOnly, "quellaro", QLHalvoEnvironment::primary, nullptr, false, {}) ==
         quellaro_halvo_result_null_argument);
  QLHalvoStatus last{};
  EXPECT(prepare([&](QLHalvoStatus prepared) {
           EXPECT(prepared == QLHalvoStatus::success);
           controller->play(view, [&](QLHalvoStatus played) {
             last = played;
             queue.stop();
           });
           throw std::runtime_error("a host's own");
         }) == quellaro_halvo_result_ok);
  EXPECT(queue.run() == quellaro_halvo_result_ok && last == QLHalvoStatus::success && deactivations == 1);
  EXPECT(controller->preparedHalvoCue() == "quellaro" && !controller->isPlaying());
  EXPECT(controller->lastSound() == QLHalvoSound::heard && *controller->duration() > 1 && logged == 1);
  EXPECT(!controller->failureReason());
  EXPECT(prepare([&](QLHalvoStatus) { controller.reset(); }) == quellaro_halvo_result_ok && !controller);

  controller = QLHalvoController::make();
  EXPECT(controller->setPreparedHalvoCue("x") == quellaro_halvo_result_ok && controller->preparedHalvoCue() == "x");
  EXPECT(controller->setIsPlaying(true) == quellaro_halvo_result_ok && controller->isPlaying());
  controller->play(nullptr, [&](QLHalvoStatus played) { last = played; });
  EXPECT(last == QLHalvoStatus::alreadyPlaying && controller->failureReason() &&
         !QLHalvoController::make()->duration());
  EXPECT(setConsoleSink({}) == quellaro_halvo_result_ok && setLogSink({}) == quellaro_halvo_result_ok);
}

void aHostsOwnLoopWaits() {
  MainQueue& queue = MainQueue::shared();
  EXPECT(queue.fileDescriptor() >= 0);
  while (queue.secondsUntilNextDeadline()) {
    queue.wait();
    queue.drain();
  }
}

}  // namespace

int main() {
  quellaro_halvo_use_simulated_devices(1.0, false);
  everyStatusIsAnErrorOfItsOwn();
  aMerchantHasWhatItWasGiven();
  aViewIsDrawnIntoTheHostsPixels();
  aCueIsPreparedAndPlayed();
  aHostsOwnLoopWaits();
  std::puts("every declaration was used");
  return 0;
}
