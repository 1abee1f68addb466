#include "platform/dispatch/group.h"

#include <utility>

namespace quellaro {

void DispatchGroup::enter() {
  const std::lock_guard lock(mutex_);
  ++entered_;
}

void DispatchGroup::leave() noexcept {
  std::vector<Notification> due;
  {
    const std::lock_guard lock(mutex_);
    if (entered_ == 0 || --entered_ != 0) return;
    due.swap(notifications_);
  }
  for (Notification& notification : due) notification.queue->async(std::move(notification.work));
}

bool DispatchGroup::isEmpty() const {
  const std::lock_guard lock(mutex_);
  return entered_ == 0;
}

void DispatchGroup::notify(MainQueue& queue, Work work) {
  PreparedWork prepared;
  prepared.push_back(std::move(work));
  {
    const std::lock_guard lock(mutex_);
    if (entered_ != 0) {
      notifications_.push_back({&queue, std::move(prepared)});
      return;
    }
  }
  queue.async(std::move(prepared));
}

}  // namespace quellaro
