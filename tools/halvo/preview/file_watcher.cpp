#include "preview/file_watcher.h"

#include <poll.h>
#include <strings.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <utility>

#include "platform/foundation/error.h"

namespace halvo {

using namespace quellaro;

namespace {

// A save is several changes; it is over when none has come for so long. One that goes on and on is looked at meanwhile.
constexpr int kQuietMilliseconds = 30;
constexpr std::chrono::milliseconds kLongestSave{300};

constexpr std::uint32_t kChanges = IN_CLOSE_WRITE | IN_MODIFY | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;

// What a source may consist of; not what programs leave beside it while they write.
bool isPart(std::string_view name) {
  if (name.starts_with('.')) return false;
  return std::ranges::any_of(
      std::array<std::string_view, 5>{".svg", ".svgz", ".json", ".mp3", ".ahap"}, [name](std::string_view ending) {
        return name.size() > ending.size() &&
               strncasecmp(name.data() + name.size() - ending.size(), ending.data(), ending.size()) == 0;
      });
}

}  // namespace

std::unique_ptr<FileWatcher> FileWatcher::watch(const std::string& path, std::function<void()> onChange,
                                                std::string& problem) {
  // Private constructor: make_unique cannot reach it.
  std::unique_ptr<FileWatcher> watcher(new FileWatcher(path, std::move(onChange)));
  if (watcher->start()) return watcher;
  problem = posixError(errno).localizedDescription;
  return nullptr;
}

FileWatcher::FileWatcher(const std::string& path, std::function<void()> onChange) : onChange_(std::move(onChange)) {
  namespace fs = std::filesystem;
  std::error_code ignored;
  const fs::path real = fs::canonical(path, ignored);
  fs::path named = fs::absolute(path, ignored).lexically_normal();
  if (!named.has_filename()) named = named.parent_path();
  if (fs::is_directory(real, ignored)) {
    places_.push_back({named, ""});
  } else if (!isPart(named.filename().string()) || named.extension() == ".json") {
    // What belongs to an animation.json lies beside it.
    places_.push_back({named.parent_path(), ""});
  }
  places_.push_back({named.parent_path(), named.filename()});
  // Where a link leads to.
  if (real != named) places_.push_back({real.parent_path(), real.filename()});
}

bool FileWatcher::start() {
  changes_ = FileDescriptor(inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
  stop_ = FileDescriptor(eventfd(0, EFD_CLOEXEC));
  if (!changes_ || !stop_) return false;
  addWatches();
  if (std::ranges::none_of(places_, [](const Place& place) { return place.descriptor >= 0; })) return false;
  thread_ = std::thread([this] { run(); });
  return true;
}

FileWatcher::~FileWatcher() {
  if (!thread_.joinable()) return;
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = write(stop_.get(), &one, sizeof one);
  thread_.join();
}

// The same directory keeps its watch; one that has come in its place gets one.
void FileWatcher::addWatches() {
  for (Place& place : places_)
    place.descriptor = inotify_add_watch(changes_.get(), place.directory.c_str(), kChanges | IN_ONLYDIR);
}

void FileWatcher::run() {
  while (true) {
    Noticed noticed = wait(-1);
    if (noticed == Noticed::Nothing) continue;
    const auto limit = std::chrono::steady_clock::now() + kLongestSave;
    while (noticed == Noticed::Change && std::chrono::steady_clock::now() < limit) noticed = wait(kQuietMilliseconds);
    if (noticed == Noticed::Stop) return;
    addWatches();
    onChange_();
  }
}

FileWatcher::Noticed FileWatcher::wait(int milliseconds) {
  pollfd descriptors[] = {{changes_.get(), POLLIN, 0}, {stop_.get(), POLLIN, 0}};
  const int ready = poll(descriptors, 2, milliseconds);
  if (descriptors[1].revents != 0 || (ready < 0 && errno != EINTR)) return Noticed::Stop;
  return ready > 0 && readChanges() ? Noticed::Change : Noticed::Nothing;
}

bool FileWatcher::readChanges() {
  alignas(inotify_event) std::array<char, 16384> buffer;
  bool isChanged = false;
  ssize_t got = 0;
  while ((got = read(changes_.get(), buffer.data(), buffer.size())) > 0) {
    for (std::size_t at = 0; at + sizeof(inotify_event) <= static_cast<std::size_t>(got);) {
      inotify_event event{};
      std::memcpy(&event, buffer.data() + at, sizeof event);
      const std::string name = event.len > 0 ? buffer.data() + at + sizeof event : "";
      if ((event.mask & (IN_Q_OVERFLOW | IN_IGNORED)) != 0 || matters(event.wd, name)) isChanged = true;
      at += sizeof event + event.len;
    }
  }
  return isChanged;
}

bool FileWatcher::matters(int descriptor, const std::string& name) const {
  return std::ranges::any_of(places_, [&](const Place& place) {
    return place.descriptor == descriptor && (place.name.empty() ? isPart(name) : place.name == name);
  });
}

}  // namespace halvo
