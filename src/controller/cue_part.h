#pragma once

#include <atomic>
#include <memory>
#include <utility>

#include "platform/dispatch/group.h"
#include "types/component_status.h"

namespace quellaro {

// One part of a prepare or a play, from when it has entered the group: it comes to one outcome, the first that it is
// told, and leaves the group with it. To end needs no memory. Any thread.
class CuePart {
 public:
  CuePart(std::shared_ptr<ComponentStatus> status, std::shared_ptr<DispatchGroup> group)
      : status_(std::move(status)), group_(std::move(group)) {
    group_->enter();
  }

  void end(ComponentStatus::Case outcome) noexcept {
    if (hasEnded_.test_and_set()) return;
    *status_ = outcome;
    group_->leave();
  }

 private:
  std::shared_ptr<ComponentStatus> status_;
  std::shared_ptr<DispatchGroup> group_;
  std::atomic_flag hasEnded_;
};

}  // namespace quellaro
