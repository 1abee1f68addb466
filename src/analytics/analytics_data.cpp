#include "analytics/analytics_data.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>

#include "analytics/reporting_period.h"
#include "assets/halvo_file_manager.h"
#include "assets/halvo_utility.h"
#include "platform/foundation/memory/limits.h"
#include "platform/foundation/storage/file_manager.h"

namespace quellaro {

namespace {

using Events = MixpanelAnalyticsData::Events;

bool exists(const char* file) {
  const std::optional<std::string> path = HalvoFileManager::libraryFileURL(file);
  return path && FileManager::fileExistsAtPath(*path);
}

bool replace(const char* file, const char* by) {
  const std::optional<std::string> from = HalvoFileManager::libraryFileURL(by);
  const std::optional<std::string> to = HalvoFileManager::libraryFileURL(file);
  return from && to && std::rename(from->c_str(), to->c_str()) == 0;
}

// The second half of moving the current records to the failed file, whose first half is that the failed file's
// replacement exists. May be done again after any part of it.
void finishMove() {
  using Data = MixpanelAnalyticsData;
  if (!exists(Data::kNextFailedFile)) return;
  if (exists(Data::kNextCurrentFile)) replace(Data::kCurrentFile, Data::kNextCurrentFile);
  replace(Data::kFailedFile, Data::kNextFailedFile);
}

std::optional<FileLock> lockInLibrary(const char* file, std::chrono::milliseconds patience) {
  const std::optional<std::string> path = HalvoFileManager::libraryFileURL(file);
  return path ? FileLock::take(*path, FileLock::Kind::Exclusive, patience) : FileLock();
}

}  // namespace

MixpanelAnalyticsData::MixpanelAnalyticsData(QLHalvoAnalyticsInfo info, QLHalvoEnvironment hostEnvironment,
                                             MixpanelAnalyticsServiceProvider service)
    : config(std::move(info)), environment(hostEnvironment), service_(std::move(service)) {}

std::optional<FileLock> MixpanelAnalyticsData::lockFiles() {
  std::optional<FileLock> lock = lockInLibrary(kLockFile, FileLock::kPatience);
  if (lock) finishMove();
  return lock;
}

std::optional<FileLock> MixpanelAnalyticsData::claimUpload() { return lockInLibrary(kClaimFile, {}); }

bool MixpanelAnalyticsData::canSend() const { return config.url && NSURL::fromString(*config.url); }

bool MixpanelAnalyticsData::recordPlay(const std::shared_ptr<const QLHalvoMerchant>& merchant,
                                       const CuePlay& play) const {
  const std::string name = MixpanelAggregatedCueEvent::nameFor(play.cueName);
  const auto isSame = [&, hash = merchant->hash()](const MixpanelAggregatedCueEvent& record) {
    return record.event == name && record.properties.merchant->hash() == hash;
  };
  const bool isClosed = exists(kNextCurrentFile);
  Events records = readEvents(isClosed ? kNextCurrentFile : kCurrentFile);
  if (isClosed) {
    // Its turn to be sent comes once it is the current file. Until then nothing is added to a record that is over.
    const auto found = std::ranges::find_if(records, [&](const MixpanelAggregatedCueEvent& record) {
      return isSame(record) && !shouldSendNow({record}, play.cueName, play.cueVersion);
    });
    count(records, found, merchant, play);
    writeEvents(records, kNextCurrentFile);
    return true;
  }
  if (!shouldSendNow(records, play.cueName, play.cueVersion)) {
    count(records, std::ranges::find_if(records, isSame), merchant, play);
    writeEvents(records, kCurrentFile);
    return false;
  }
  if (!canSend()) return false;
  Events next;
  count(next, next.end(), merchant, play);
  return writeEvents(next, kNextCurrentFile);
}

bool MixpanelAnalyticsData::sendEvents(const Events& records, Completion completion) const {
  return service_.sendEvents(records, environment, config.url, std::move(completion));
}

void MixpanelAnalyticsData::resendEnded(bool success) {
  if (success) writeEvents({}, kFailedFile);
}

void MixpanelAnalyticsData::uploadEnded(bool success) {
  // Somebody may have removed it.
  if (!exists(kNextCurrentFile) && !writeEvents({}, kNextCurrentFile)) return;
  if (success) {
    replace(kCurrentFile, kNextCurrentFile);
    return;
  }
  const std::optional<std::string> failedFile = HalvoFileManager::libraryFileURL(kFailedFile);
  // Nothing can take its place.
  if (!failedFile || FileManager::directoryExistsAtPath(*failedFile)) return;
  Events batch = readEvents(kCurrentFile);
  std::ranges::move(readEvents(kFailedFile), std::back_inserter(batch));
  if (writeEvents(batch, kNextFailedFile)) finishMove();
}

// Into the record found, if there is one. The record that was updated last stands last.
void MixpanelAnalyticsData::count(Events& records, Events::iterator found,
                                  const std::shared_ptr<const QLHalvoMerchant>& merchant, const CuePlay& play) {
  if (found != records.end())
    std::rotate(found, found + 1, records.end());
  else
    records.push_back(MixpanelAggregatedCueEvent::create(play.cueName, play.cueVersion, merchant,
                                                         HalvoUtility::sdkVersion(), play.haptics.isEnabled,
                                                         play.haptics.isSupported));
  MixpanelAggregatedCueEventProperties& properties = records.back().properties;
  properties.countPlay(play.type, play.animationOutcome, play.soundOutcome, play.haptics.hapticsStatus, play.isMuted);
  properties.endDate = NSDate::now();
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
