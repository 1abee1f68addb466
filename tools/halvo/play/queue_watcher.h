#pragma once

#include <SDL2/SDL.h>

#include <semaphore>
#include <thread>

#include "platform/foundation/storage/file_descriptor.h"

namespace halvo {

// Joins the main queue to SDL's event loop, which can wait for nothing but events: a thread sleeps at the queue's file
// descriptor and turns its becoming readable into an event. One event at a time, until the queue has been drained.
class QueueWatcher {
 public:
  QueueWatcher();
  ~QueueWatcher();
  QueueWatcher(const QueueWatcher&) = delete;
  QueueWatcher& operator=(const QueueWatcher&) = delete;

  // To be told of every event that SDL gives.
  void handle(const SDL_Event& event);
  // Watches on; to be called when the queue has been drained.
  void resume();

 private:
  void watch();

  const Uint32 wakeEvent_;
  bool isWaking_ = false;
  quellaro::FileDescriptor stop_;
  std::counting_semaphore<> drained_{0};
  std::thread thread_;
};

}  // namespace halvo
