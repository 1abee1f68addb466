#include "play/queue_watcher.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <cerrno>
#include <cstdint>

#include "platform/dispatch/main_queue.h"

namespace halvo {

QueueWatcher::QueueWatcher()
    : wakeEvent_(SDL_RegisterEvents(1)), stop_(eventfd(0, EFD_CLOEXEC)), thread_([this] { watch(); }) {}

QueueWatcher::~QueueWatcher() {
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = write(stop_.get(), &one, sizeof one);
  drained_.release();
  thread_.join();
}

void QueueWatcher::handle(const SDL_Event& event) {
  if (event.type == wakeEvent_) isWaking_ = true;
}

void QueueWatcher::resume() {
  if (!isWaking_) return;
  isWaking_ = false;
  drained_.release();
}

void QueueWatcher::watch() {
  while (true) {
    pollfd descriptors[] = {{quellaro::MainQueue::shared().fileDescriptor(), POLLIN, 0}, {stop_.get(), POLLIN, 0}};
    const int ready = poll(descriptors, 2, -1);
    if (ready < 0 && errno == EINTR) continue;
    if (ready < 0 || descriptors[1].revents != 0) return;
    SDL_Event event{};
    event.type = wakeEvent_;
    SDL_PushEvent(&event);
    drained_.acquire();
  }
}

}  // namespace halvo
