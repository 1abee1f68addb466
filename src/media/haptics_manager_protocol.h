#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/dispatch/function.h"
#include "platform/dispatch/group.h"
#include "types/component_status.h"

namespace quellaro {

// Writes the controller's haptics status; does nothing once the controller is gone.
using HapticsStatusWriter = Function<void(const ComponentStatus&)>;

// What the cue's controller asks of its haptics. Each call leaves the group, which the caller has entered, exactly
// once, after it has written the outcome; one that throws has done neither, and never will.
class HapticsManagerProtocol {
 public:
  virtual ~HapticsManagerProtocol() = default;

  // Ready, or an error. Returns with the outcome written.
  virtual void prepare(const std::string& cueName, const HapticsStatusWriter& setStatus,
                       const std::shared_ptr<DispatchGroup>& group) = 0;
  // Starts the pattern at once. Played when it has ended, or an error.
  virtual void play(const HapticsStatusWriter& setStatus, const std::shared_ptr<DispatchGroup>& group) = 0;

  // Why the last prepare has failed, with the file and the place in it; empty when it has not.
  virtual std::string_view failureReason() const { return {}; }
  // Seconds that the prepared pattern takes.
  virtual double duration() const { return 0; }
};

}  // namespace quellaro
