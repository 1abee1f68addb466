// How well a cue keeps time: how late frames come, what waiting costs, what one frame costs to show and draw, and how
// soon the first one is in a window and the sound is heard.
// Usage: timeline_bench CUE_DIRECTORY
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "animation/halvo_animation_controller.h"
#include "animation/halvo_view.h"
#include "platform/dispatch/main_queue.h"
#include "platform/foundation/console.h"
#include "platform/foundation/storage/file_manager.h"
#include "platform/quartzcore/compositor.h"
#include "play/window.h"
#include "sound_start.h"

namespace {

using namespace quellaro;

constexpr int kRounds = 5;
constexpr int kWindowRounds = 20;
constexpr int kSoundRounds = 20;

double now() { return MainQueue::shared().clock().now(); }

double processorSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double quantile(std::vector<double> values, double share) {
  std::sort(values.begin(), values.end());
  return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1))];
}

// In milliseconds.
struct Bounds {
  double median = 0;  // none
  double p99 = 0;
};

void report(const char* what, const std::vector<double>& seconds, Bounds bounds) {
  std::printf("%-44s median %7.3f ms", what, quantile(seconds, 0.5) * 1000);
  if (bounds.median > 0) std::printf(" (bound %g)", bounds.median);
  std::printf("   p99 %7.3f ms (bound %g)\n", quantile(seconds, 0.99) * 1000, bounds.p99);
}

struct Cue {
  QLHalvoAnimationController controller;
  std::shared_ptr<const QLHalvoSDKConfig> config;
};

bool load(const std::string& directory, Cue& cue) {
  auto bytes = FileManager::readAtPath(directory + "/play_config.json");
  if (!bytes) return false;
  const auto config = decodeSDKConfig(std::move(*bytes));
  if (!config || cue.controller.loadFrames(directory + "/animation.json")) return false;
  cue.config = *config;
  return !cue.controller.animationElements().empty();
}

// A play in real time, every frame drawn into memory when it is shown.
void measurePlay(Cue& cue) {
  const auto view = QLHalvoView::initWithFrame({{0, 0}, {480, 480}});
  view->layoutIfNeeded();
  Compositor compositor;
  Bitmap bitmap(480, 480);
  std::vector<double> late;
  double start = 0;
  double due = 0;
  std::size_t frame = 0;
  view->animtionView()->setFrameHandler([&] {
    if (frame > 0) late.push_back(now() - start - due);
    due += cue.config->frameTime.at("Frame_" + std::to_string(++frame)) / 1000;
    view->display(compositor, bitmap);
  });
  bool isDone = false;
  const double processorBefore = processorSeconds();
  // The times count from the line that says that the animation has started.
  setConsoleSink([&](std::string_view) {
    if (start == 0) start = now();
  });
  cue.controller.play(view, cue.config, [&] { isDone = true; }, {});
  while (!isDone)
    if (!MainQueue::shared().drain()) MainQueue::shared().wait();
  const double share = (processorSeconds() - processorBefore) / (now() - start);
  setConsoleSink([](std::string_view) {});
  report("frames late, drawn into memory at 480 x 480", late, {.median = 1, .p99 = 4});
  std::printf("%-44s %.1f %% (bound 10)\n", "share of one core meanwhile", share * 100);
}

void measureDrawing(const Cue& cue) {
  const auto view = QLHalvoView::initWithFrame({{0, 0}, {1080, 1080}});
  view->layoutIfNeeded();
  Compositor compositor;
  Bitmap bitmap(1080, 1080);
  std::vector<double> costs;
  for (int round = 0; round < kRounds; ++round)
    for (const auto& frame : cue.controller.animationElements()) {
      const double before = now();
      view->animtionView()->setSvgDocument(frame);
      view->animtionView()->showLayer(frame->makeLayer());
      view->display(compositor, bitmap);
      costs.push_back(now() - before);
    }
  report("showing and drawing a frame at 1080 x 1080", costs, {.p99 = 8});
}

// From the start of the animation to the first frame having been handed to the display.
void measureWindow(Cue& cue) {
  const auto view = QLHalvoView::initWithFrame({{0, 0}, {480, 480}});
  std::string problem;
  const auto window = halvo::Window::open(view, {}, problem);
  if (!window) {
    std::printf("first frame in the window: not measured, there is no display (%s)\n", problem.c_str());
    return;
  }
  std::vector<double> latencies;
  for (int round = 0; round < kWindowRounds; ++round) {
    const double start = now();
    view->animtionView()->setSdkConfig(nullptr);
    view->animtionView()->playFrames(cue.controller.animationElements(), {});
    window->refresh();
    latencies.push_back(now() - start);
  }
  report("first frame in the window at 480 x 480", latencies, {.p99 = 16.7});
}

void measureSound(const std::string& soundFile) {
  try {
    SoundStart start = measureSoundStart(soundFile, kSoundRounds);
    for (double& seconds : start.seconds) seconds -= start.sinkLatency;
    report("sound heard, beyond the server's latency", start.seconds, {.p99 = 30});
    std::printf("  (the server's latency, as it tells: %g ms; measured in steps of %g ms)\n", start.sinkLatency * 1000,
                kSoundStartStep * 1000);
  } catch (const std::exception& problem) {
    std::printf("sound heard: not measured, there is no sound server to listen to (%s)\n", problem.what());
  }
}

}  // namespace

int main(int argc, char** argv) {
  Cue cue;
  if (argc != 2 || !load(argv[1], cue)) {
    std::fprintf(stderr, "Usage: timeline_bench CUE_DIRECTORY\n");
    return 2;
  }
  setConsoleSink([](std::string_view) {});
  std::printf("%zu frames\n", cue.controller.animationElements().size());
  measurePlay(cue);
  measureDrawing(cue);
  measureWindow(cue);
  measureSound(std::string(argv[1]) + "/" + cue.config->soundFileName);
  return 0;
}
