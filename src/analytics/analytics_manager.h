#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "analytics/analytics_managing.h"
#include "analytics/service_provider.h"
#include "platform/dispatch/serial_queue.h"

namespace quellaro {

// Records plays, one after the other, on a queue of its own; records whose upload failed earlier are sent again first.
// Without settings, with settings that are turned off, or without an environment it does nothing at all; without a
// merchant it counts nothing. Lives until its last play has been counted.
class MixpanelAnalyticsManager final : public AnalyticsManaging,
                                       public std::enable_shared_from_this<MixpanelAnalyticsManager> {
 public:
  static std::shared_ptr<MixpanelAnalyticsManager> make(MixpanelAnalyticsServiceProvider service = {});

  // Any thread but that of work on the queue. Malformed UTF-8 becomes U+FFFD. Never throws: a play that there is no
  // memory to remember is not counted.
  void recordPlay(const std::optional<std::string>& cueName, const std::optional<std::string>& cueVersion,
                  QLHalvoType type, std::int64_t animationOutcome, const HapticsAnalytics& haptics,
                  std::int64_t soundOutcome, bool isMuted) override;

  const std::unique_ptr<SerialQueue> serialAccessQueue;

 private:
  explicit MixpanelAnalyticsManager(MixpanelAnalyticsServiceProvider service);

  MixpanelAnalyticsServiceProvider service_;
};

}  // namespace quellaro
