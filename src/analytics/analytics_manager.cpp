#include "analytics/analytics_manager.h"

#include <utility>
#include <vector>

#include "platform/foundation/application.h"
#include "platform/foundation/text/utf8.h"

namespace quellaro {

std::shared_ptr<MixpanelAnalyticsManager> MixpanelAnalyticsManager::make(MixpanelAnalyticsServiceProvider service) {
  return std::shared_ptr<MixpanelAnalyticsManager>(new MixpanelAnalyticsManager(std::move(service)));
}

MixpanelAnalyticsManager::MixpanelAnalyticsManager(MixpanelAnalyticsServiceProvider service)
    : serialAccessQueue(std::make_unique<SerialQueue>(applicationIdentifier().value_or("") + ".serialQ",
                                                      QualityOfService::Background)),
      service_(std::move(service)) {}

void MixpanelAnalyticsManager::recordPlay(const std::optional<std::string>& cueName,
                                          const std::optional<std::string>& cueVersion, QLHalvoType type,
                                          std::int64_t animationOutcome, const HapticsAnalytics& haptics,
                                          std::int64_t soundOutcome, bool isMuted) {
  if (!config || !config->enabled.value_or(false)) return;
  const CuePlay play{repairedUTF8(cueName.value_or("")),
                     repairedUTF8(cueVersion.value_or("")),
                     type,
                     animationOutcome,
                     soundOutcome,
                     haptics,
                     isMuted};
  serialAccessQueue->sync([&] {
    if (!config || !environment) return;
    const MixpanelAnalyticsData store(*config, *environment, service_);
    UsageLedger::forLibrary()->perform(
        [self = shared_from_this(), store, play](LedgerTurn turn) { return self->record(store, play, turn); });
  });
}

std::optional<PendingUpload> MixpanelAnalyticsManager::record(const MixpanelAnalyticsData& store, const CuePlay& play,
                                                              LedgerTurn turn) {
  if (turn == LedgerTurn::AtOnce) {
    std::vector<MixpanelAggregatedCueEvent> failed =
        MixpanelAnalyticsData::readEvents(MixpanelAnalyticsData::kFailedFile);
    if (!failed.empty())
      return store.resendFailedEvents(
          std::move(failed), [self = shared_from_this(), store, play](bool) { return self->count(store, play); });
  }
  return count(store, play);
}

// For the merchant that is set when it comes to it.
std::optional<PendingUpload> MixpanelAnalyticsManager::count(const MixpanelAnalyticsData& store,
                                                             const CuePlay& play) const {
  if (!merchant || play.cueName.empty() || play.cueVersion.empty()) return std::nullopt;
  return store.recordPlay(merchant, play);
}

}  // namespace quellaro
