#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "analytics/aggregated_cue_event.h"
#include "analytics/cue_play.h"
#include "analytics/service_provider.h"
#include "assets/version_config.h"
#include "platform/foundation/storage/file_lock.h"
#include "types/halvo_enums.h"
#include "types/merchant.h"

namespace quellaro {

// Counts plays into the files of the Library directory, decides when the records of a period are due, and keeps what
// could not be delivered. Made anew for every play; all that lasts is in the files, which are only ever rewritten
// whole. Unreadable files read as empty, failed writes are silent.
//
// While the current file is on its way it is closed: it stays as it is, and plays are counted into the file that will
// replace it. That a replacement exists is what says so, to every process and after a kill. Every change of the files
// takes the lock; only who has the claim as well sends, and changes what is being sent.
class MixpanelAnalyticsData {
 public:
  using Events = std::vector<MixpanelAggregatedCueEvent>;
  using Completion = MixpanelAnalyticsServiceProvider::Completion;

  // Below the Library directory.
  static constexpr const char* kCurrentFile = "/mixpanel-analytics-data.json";    // this period's records
  static constexpr const char* kFailedFile = "/sync-failed-analytics-data.json";  // waiting for another attempt
  static constexpr const char* kNextCurrentFile = "/mixpanel-analytics-data-next.json";
  // There only for the moment in which records move from the current file to the failed one.
  static constexpr const char* kNextFailedFile = "/sync-failed-analytics-data-next.json";
  static constexpr const char* kLockFile = "/mixpanel-analytics.lock";
  static constexpr const char* kClaimFile = "/mixpanel-analytics-upload.lock";

  MixpanelAnalyticsData(QLHalvoAnalyticsInfo info, QLHalvoEnvironment hostEnvironment,
                        MixpanelAnalyticsServiceProvider service);

  const QLHalvoAnalyticsInfo config;
  const QLHalvoEnvironment environment;

  // Held for as long as the files are worked with; nothing when another process keeps it. Finishes what a killed
  // process has left half done.
  static std::optional<FileLock> lockFiles();
  // Held from before a request until its outcome is on disk, by a process at most; nothing when another one has it.
  static std::optional<FileLock> claimUpload();

  // Whether there is an address to send to.
  bool canSend() const;
  // With the lock: counts one play of a cue that has a name. Gives whether the current file is closed and has to be
  // sent. A play that finds it due and nowhere to send it is not counted.
  bool recordPlay(const std::shared_ptr<const QLHalvoMerchant>& merchant, const CuePlay& play) const;
  // With the claim alone: starts a request and returns at once. False when there is none, and then no completion.
  bool sendEvents(const Events& records, Completion completion) const;
  // With both: what the outcome means for the failed file after it has been sent,
  static void resendEnded(bool success);
  // and for the current one. Records that cannot be moved to the failed file stay where they are.
  static void uploadEnded(bool success);

  // The records are of another version of the library, one of them is of another version of the cue, or their period is
  // over.
  bool shouldSendNow(const Events& records, const std::string& cueName, const std::string& cueVersion) const;

  static Events readEvents(const char* file);
  // Gives whether it has been written.
  static bool writeEvents(const Events& records, const char* file);

 private:
  static void count(Events& records, Events::iterator found, const std::shared_ptr<const QLHalvoMerchant>& merchant,
                    const CuePlay& play);

  MixpanelAnalyticsServiceProvider service_;
};

}  // namespace quellaro
