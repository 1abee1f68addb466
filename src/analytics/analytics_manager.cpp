#include "analytics/analytics_manager.h"

#include <new>
#include <utility>

#include "analytics/usage_recorder.h"
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
  const auto work = [&]() noexcept {
    try {
      if (!config || !environment) return;
      CuePlay play{repairedUTF8(cueName.value_or("")),
                   repairedUTF8(cueVersion.value_or("")),
                   type,
                   animationOutcome,
                   soundOutcome,
                   haptics,
                   isMuted};
      UsageRecorder::forLibrary().record(
          {std::make_shared<const MixpanelAnalyticsData>(*config, *environment, service_), std::move(play),
           shared_from_this()});
    } catch (const std::bad_alloc&) {
      return;
    }
  };
  serialAccessQueue->sync(work);
}

}  // namespace quellaro
