#include "platform/dispatch/group.h"

#include <utility>

namespace quellaro {

void DispatchGroup::enter() {
  const std::lock_guard lock(mutex_);
  ++entered_;
}

void DispatchGroup::leave() {
  std::vector<Notification> due;
  {
    const std::lock_guard lock(mutex_);
    if (entered_ == 0 || --entered_ != 0) return;
    due.swap(notifications_);
  }
  for (Notification& notification : due) notification.queue->async(std::move(notification.work));
}

void DispatchGroup::notify(MainQueue& queue, Work work) {
  {
    const std::lock_guard lock(mutex_);
    if (entered_ != 0) {
      notifications_.push_back({&queue, std::move(work)});
      return;
    }
  }
  queue.async(std::move(work));
}

}  // namespace quellaro
