#include "analytics/analytics_data.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "analytics/reporting_period.h"
#include "assets/halvo_file_manager.h"
#include "assets/halvo_utility.h"
#include "platform/foundation/memory/limits.h"
#include "platform/foundation/storage/file_manager.h"

namespace quellaro {

using Events = std::vector<MixpanelAggregatedCueEvent>;

MixpanelAnalyticsData::MixpanelAnalyticsData(QLHalvoAnalyticsInfo info, QLHalvoEnvironment hostEnvironment,
                                             MixpanelAnalyticsServiceProvider service)
    : config(std::move(info)), environment(hostEnvironment), service_(std::move(service)) {}

std::optional<PendingUpload> MixpanelAnalyticsData::recordPlay(std::shared_ptr<const QLHalvoMerchant> merchant,
                                                               const CuePlay& play) const {
  Events records = readEvents(kCurrentFile);
  if (!shouldSendNow(records, play.cueName, play.cueVersion)) {
    count(std::move(records), std::move(merchant), play);
    return std::nullopt;
  }
  return upload(records, [records, merchant = std::move(merchant), play](bool success) -> std::optional<PendingUpload> {
    if (!success) {
      Events batch = records;
      std::ranges::move(readEvents(kFailedFile), std::back_inserter(batch));
      // Records that cannot be kept there stay where they are; the play is then not counted.
      if (!writeEvents(batch, kFailedFile)) return std::nullopt;
    }
    count({}, merchant, play);
    return std::nullopt;
  });
}

PendingUpload MixpanelAnalyticsData::resendFailedEvents(
    Events records, std::function<std::optional<PendingUpload>(bool success)> completion) const {
  return upload(std::move(records), [completion = std::move(completion)](bool success) {
    if (success) writeEvents({}, kFailedFile);
    return completion(success);
  });
}

PendingUpload MixpanelAnalyticsData::upload(Events records,
                                            std::function<std::optional<PendingUpload>(bool success)> finish) const {
  PendingUpload pending;
  pending.start = [store = *this, records = std::move(records)](const std::function<void(bool)>& outcome) {
    return store.service_.sendEvents(records, store.environment, store.config.url,
                                     [outcome](bool success, const std::optional<UploadError>&) { outcome(success); });
  };
  pending.finish = std::move(finish);
  return pending;
}

void MixpanelAnalyticsData::count(Events records, std::shared_ptr<const QLHalvoMerchant> merchant,
                                  const CuePlay& play) {
  const std::string name = MixpanelAggregatedCueEvent::nameFor(play.cueName);
  const std::uint64_t merchantHash = merchant->hash();
  const auto found = std::ranges::find_if(records, [&](const MixpanelAggregatedCueEvent& record) {
    return record.event == name && record.properties.merchant->hash() == merchantHash;
  });
  // The record that was updated last stands last.
  if (found != records.end())
    std::rotate(found, found + 1, records.end());
  else
    records.push_back(MixpanelAggregatedCueEvent::create(play.cueName, play.cueVersion, std::move(merchant),
                                                         HalvoUtility::sdkVersion(), play.haptics.isEnabled,
                                                         play.haptics.isSupported));
  MixpanelAggregatedCueEventProperties& properties = records.back().properties;
  properties.countPlay(play.type, play.animationOutcome, play.soundOutcome, play.haptics.hapticsStatus, play.isMuted);
  properties.endDate = NSDate::now();
  writeEvents(records, kCurrentFile);
}

bool MixpanelAnalyticsData::shouldSendNow(const Events& records, const std::string& cueName,
                                          const std::string& cueVersion) const {
  if (records.empty()) return false;
  // All records of a file are of one version of the library.
  if (records.front().properties.sdkVersion != HalvoUtility::sdkVersion()) return true;
  const std::string name = MixpanelAggregatedCueEvent::nameFor(cueName);
  // A start that is still to come (the clock was set back) does not count as elapsed.
  NSDate earliest = NSDate::now();
  for (const MixpanelAggregatedCueEvent& record : records) {
    earliest = std::min(earliest, record.properties.startDate);
    if (record.event == name && record.properties.cueVersion != cueVersion) return true;
  }
  return isPeriodElapsed(earliest, config.frequency);
}

Events MixpanelAnalyticsData::readEvents(const char* file) {
  const std::optional<std::string> path = HalvoFileManager::libraryFileURL(file);
  if (!path) return {};
  std::optional<std::string> bytes = FileManager::contentsAtPath(*path, limits::kUsageFileBytes);
  if (!bytes) return {};
  Result<Events> events = decodeAggregatedCueEvents(std::move(*bytes));
  return events ? std::move(*events) : Events{};
}

bool MixpanelAnalyticsData::writeEvents(const Events& records, const char* file) {
  const std::optional<std::string> path = HalvoFileManager::libraryFileURL(file);
  return path && !FileManager::writeAtomically(encodeAggregatedCueEvents(records), *path);
}

}  // namespace quellaro
