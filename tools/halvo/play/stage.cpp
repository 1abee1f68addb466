#include "play/stage.h"

#include <cstdlib>
#include <utility>

#include "picture/frame_view.h"
#include "platform/dispatch/main_queue.h"
#include "platform/foundation/storage/file_manager.h"

namespace halvo {

using namespace quellaro;

namespace {

std::optional<std::string> chooseDirectory(const std::string& path, std::optional<std::string>& directory) {
  if (!FileManager::directoryExistsAtPath(path))
    if (const auto problem = FileManager::createDirectoryAtPath(path)) return problem->localizedDescription;
  directory = path;
  return std::nullopt;
}

// As the desktop's base directories have it.
std::string cacheDirectory() {
  const char* cache = std::getenv("XDG_CACHE_HOME");
  if (cache != nullptr && cache[0] == '/') return cache;
  const char* home = std::getenv("HOME");
  return std::string(home != nullptr && home[0] == '/' ? home : "/tmp") + "/.cache";
}

}  // namespace

std::vector<Option> StageOptions::options() {
  return {
      {"no-view", "", "play with no view", setFlag(noView)},
      {"background", "COLOUR", "black or white (black)", setBackground(background)},
      {"size", "WxH", "size of the view in pixels (480x480)", setSize(size)},
      {"record", "DIR", "write every shown frame as DIR/frame_0001.png, ...",
       [this](const std::string& value) { return chooseDirectory(value, recordDirectory); }},
  };
}

Stage::Stage(const StageOptions& options, Screen screen) {
  if (options.noView) return;
  view_ = makeView(options.size, options.background);
  if (screen == Screen::Desktop) {
    std::string problem;
    window_ = Window::open(view_, options.size, problem);
    isWithoutDisplay_ = !window_;
    if (isWithoutDisplay_) tell("there is no display, so the view is drawn into memory: " + problem);
  }
  if (!window_ || options.recordDirectory) recorder_ = std::make_unique<Recorder>(view_, options.recordDirectory);
  if (isWithoutDisplay_) recorder_->keepContactSheet();
}

void Stage::turn() {
  MainQueue& queue = MainQueue::shared();
  // First of all: what has come or ended since the caller looked has made the queue's descriptor readable, and draining
  // would make it quiet again.
  if (window_)
    window_->wait();
  else
    queue.wait();
  queue.drain();
  if (window_) window_->refresh();
}

void Stage::setState(const std::string& state) {
  if (window_) window_->setTitle("halvo: " + state);
}

bool Stage::finish() {
  const auto problem = recorder_ ? recorder_->finish() : std::nullopt;
  if (problem) tell(problem->localizedDescription);
  if (isWithoutDisplay_) leaveContactSheet();
  return !problem;
}

void Stage::leaveContactSheet() const {
  const std::string path = cacheDirectory() + "/halvo/last_play.png";
  auto problem = FileManager::createDirectoryAtPath(cacheDirectory() + "/halvo");
  if (!problem) problem = recorder_->writeContactSheet(path);
  tell(problem ? "no contact sheet of what was shown: " + problem->localizedDescription : "what was shown: " + path);
}

}  // namespace halvo
