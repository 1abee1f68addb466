#include <atomic>
#include <cstdint>
#include <cstdio>
#include <memory>

#include "commands.h"
#include "options.h"
#include "platform/dispatch/main_queue.h"
#include "platform/dispatch/serial_queue.h"
#include "platform/foundation/console.h"
#include "preview/file_watcher.h"
#include "preview/preview_source.h"
#include "preview/preview_window.h"
#include "progress_line.h"

namespace halvo {

namespace {

using namespace quellaro;

// Reads the source anew when it has been saved, beside the main thread, and gives the window what came of it.
class Reloading {
 public:
  Reloading(std::shared_ptr<SourceReader> reader, const std::shared_ptr<PreviewWindow>& window)
      : reader_(std::move(reader)), window_(window) {}
  Reloading(const Reloading&) = delete;
  Reloading& operator=(const Reloading&) = delete;
  // Nothing is read any longer.
  ~Reloading() {
    reader_->stop();
    queue_.sync([] {});
  }

  // Any thread. What is saved while it is read is read after that.
  void begin() {
    if (isDue_->exchange(true)) return;
    queue_.async([reader = reader_, window = window_, isDue = isDue_] {
      *isDue = false;
      const auto read = std::make_shared<Result<std::shared_ptr<const PreviewSource>>>(reader->read());
      MainQueue::shared().async([read, window] {
        const auto shown = window.lock();
        if (!shown) return;
        if (*read)
          shown->replaceSource(**read);
        else
          shown->setProblem(read->error().localizedDescription);
      });
    });
  }

 private:
  std::shared_ptr<SourceReader> reader_;
  std::weak_ptr<PreviewWindow> window_;
  std::shared_ptr<std::atomic<bool>> isDue_ = std::make_shared<std::atomic<bool>>(false);
  SerialQueue queue_{"halvo.reading", QualityOfService::UserInitiated};
};

void runLoop(Window& window, PreviewWindow& content) {
  MainQueue& queue = MainQueue::shared();
  while (!window.isClosed()) {
    window.wait(content.nextAdvance());
    queue.drain();
    content.advance(queue.clock().now());
    window.refresh();
  }
}

Result<std::shared_ptr<const PreviewSource>> readFirst(SourceReader& reader) {
  ProgressLine line("preview");
  return reader.read([&line](std::size_t done, std::size_t total) { line.show(done, total); });
}

struct WindowOptions {
  Size size{720, 860};
  std::optional<double> scale;
};

int show(const PreviewOptions& options, const WindowOptions& windowOptions) {
  // What the engine says about a frame would come once for each time it is drawn.
  setConsoleSink([](std::string_view) {});
  const auto reader = std::make_shared<SourceReader>(options);
  const auto first = readFirst(*reader);
  if (!first) return failure(first.error().localizedDescription);

  for (const std::string& note : (*first)->absent) tell(note);
  const auto content = std::make_shared<PreviewWindow>(*first, windowOptions.scale);
  std::string problem;
  const auto window = Window::open(content, windowOptions.size, problem);
  if (!window) return failure("there is no display to preview on: " + problem);
  window->setTitle("halvo: " + (*first)->parts.name + ", preview");
  Reloading reloading(reader, content);
  const auto watcher = FileWatcher::watch(
      options.path, [&reloading] { reloading.begin(); }, problem);
  if (!watcher) tell("what is saved is not noticed: " + problem);
  content->begin(MainQueue::shared().clock().now());
  runLoop(*window, *content);
  std::printf("%llu frames shown in time, %llu dropped\n", static_cast<unsigned long long>(content->session().shown()),
              static_cast<unsigned long long>(content->session().dropped()));
  return kExitFine;
}

}  // namespace

int preview(int argc, char** argv) {
  PreviewOptions options;
  WindowOptions windowOptions;
  std::int64_t rate = 0;
  std::int64_t scale = 0;

  CommandLine commandLine;
  commandLine.usage = "preview SOURCE [options]";
  commandLine.summary =
      "Shows a cue in a window, over and over, with its sound in time, and again whenever one of its files is saved.\n"
      "SOURCE is a cue's directory, an animation.json, a folder of SVG files, one SVG file or a motion file, which "
      "are\n"
      "imported.\n"
      "Keys: space pauses, left and right step, home and end, up and down change the speed; b ground, o neighbours,\n"
      "f fit or 1:1, s source beside the result, c findings, h all keys, Escape closes. The time line is clicked and\n"
      "dragged. At the end it prints how many frames were shown in time, and how many were not.\n"
      "Exit status: 0 when the window was closed, 1 when SOURCE cannot be shown or there is no display, 2 for\n"
      "unusable arguments.";
  commandLine.minimumPositional = commandLine.maximumPositional = 1;
  commandLine.options = {
      {"fps", "N", "frames in a second, where no play_config.json tells (60; of a motion file its own)",
       setNumber(rate, 1, 1000)},
      {"size", "WxH", "size of the window in pixels (720x860)", setSize(windowOptions.size)},
      {"scale", "N", "pixels to a unit of lettering and time line, 1 to 4 (the display's own)", setNumber(scale, 1, 4)},
  };
  const Parsed parsed = parse(commandLine, argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;
  options.path = parsed.positional[0];
  if (options.path.empty()) return usageError("preview", "SOURCE is empty");
  if (rate > 0) options.framesPerSecond = static_cast<double>(rate);
  if (scale > 0) windowOptions.scale = static_cast<double>(scale);
  return show(options, windowOptions);
}

}  // namespace halvo
