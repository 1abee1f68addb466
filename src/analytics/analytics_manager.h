#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "analytics/analytics_data.h"
#include "analytics/analytics_managing.h"
#include "analytics/cue_play.h"
#include "analytics/service_provider.h"
#include "analytics/usage_ledger.h"
#include "platform/dispatch/serial_queue.h"

namespace quellaro {

// Records plays, one after the other, on a queue of its own; records whose upload failed earlier are sent again first.
// Without settings, with settings that are turned off, or without an environment it does nothing at all; without a
// merchant it counts nothing. Lives until its last play has been counted.
class MixpanelAnalyticsManager final : public AnalyticsManaging,
                                       public std::enable_shared_from_this<MixpanelAnalyticsManager> {
 public:
  static std::shared_ptr<MixpanelAnalyticsManager> make(MixpanelAnalyticsServiceProvider service = {});

  // Any thread but that of work on the queue. Malformed UTF-8 becomes U+FFFD.
  void recordPlay(const std::optional<std::string>& cueName, const std::optional<std::string>& cueVersion,
                  QLHalvoType type, std::int64_t animationOutcome, const HapticsAnalytics& haptics,
                  std::int64_t soundOutcome, bool isMuted) override;

  const std::unique_ptr<SerialQueue> serialAccessQueue;

 private:
  explicit MixpanelAnalyticsManager(MixpanelAnalyticsServiceProvider service);

  std::optional<PendingUpload> record(const MixpanelAnalyticsData& store, const CuePlay& play, LedgerTurn turn);
  std::optional<PendingUpload> count(const MixpanelAnalyticsData& store, const CuePlay& play) const;

  MixpanelAnalyticsServiceProvider service_;
};

}  // namespace quellaro
