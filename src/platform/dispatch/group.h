#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "platform/dispatch/main_queue.h"

namespace quellaro {

// Counts what is outstanding. Any thread. Shared by everybody who will leave it; one that is dropped while entered
// takes its notifications with it, silently.
class DispatchGroup {
 public:
  void enter();
  // A leave without an enter is ignored. Needs no memory: the notifications are ready to be queued.
  void leave() noexcept;
  bool isEmpty() const;
  // Queues the work when the group is empty, which may be at once; it never runs inside this call.
  void notify(MainQueue& queue, Work work);

 private:
  struct Notification {
    MainQueue* queue;
    PreparedWork work;
  };
  mutable std::mutex mutex_;
  int entered_ = 0;
  std::vector<Notification> notifications_;
};

}  // namespace quellaro
