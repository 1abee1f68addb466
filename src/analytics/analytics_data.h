#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "analytics/aggregated_cue_event.h"
#include "analytics/cue_play.h"
#include "analytics/service_provider.h"
#include "analytics/usage_ledger.h"
#include "assets/version_config.h"
#include "types/halvo_enums.h"
#include "types/merchant.h"

namespace quellaro {

// Counts plays into the files of the Library directory, decides when the records of a period are due, and keeps what
// could not be delivered. Made anew for every play; all that lasts is in the two files, which are only ever rewritten
// whole. Unreadable files read as empty, failed writes are silent. Every operation that touches the files runs as a
// step of the UsageLedger.
class MixpanelAnalyticsData {
 public:
  // Below the Library directory.
  static constexpr const char* kCurrentFile = "/mixpanel-analytics-data.json";    // this period's records
  static constexpr const char* kFailedFile = "/sync-failed-analytics-data.json";  // waiting for another attempt

  MixpanelAnalyticsData(QLHalvoAnalyticsInfo info, QLHalvoEnvironment hostEnvironment,
                        MixpanelAnalyticsServiceProvider service);

  const QLHalvoAnalyticsInfo config;
  const QLHalvoEnvironment environment;

  // Counts one play of a cue that has a name. When the stored records are due, gives the upload that comes first; the
  // play then opens the new period, whatever the outcome, and is not counted when there is no outcome.
  std::optional<PendingUpload> recordPlay(std::shared_ptr<const QLHalvoMerchant> merchant, const CuePlay& play) const;
  // Another attempt for the failed file's records, which are not empty; success empties the file. Then `completion`,
  // with the outcome, says what comes next.
  PendingUpload resendFailedEvents(std::vector<MixpanelAggregatedCueEvent> records,
                                   std::function<std::optional<PendingUpload>(bool success)> completion) const;

  // The records are of another version of the library, one of them is of another version of the cue, or their period is
  // over.
  bool shouldSendNow(const std::vector<MixpanelAggregatedCueEvent>& records, const std::string& cueName,
                     const std::string& cueVersion) const;

  static std::vector<MixpanelAggregatedCueEvent> readEvents(const char* file);
  // Gives whether it has been written.
  static bool writeEvents(const std::vector<MixpanelAggregatedCueEvent>& records, const char* file);

 private:
  PendingUpload upload(std::vector<MixpanelAggregatedCueEvent> records,
                       std::function<std::optional<PendingUpload>(bool success)> finish) const;
  static void count(std::vector<MixpanelAggregatedCueEvent> records, std::shared_ptr<const QLHalvoMerchant> merchant,
                    const CuePlay& play);

  MixpanelAnalyticsServiceProvider service_;
};

}  // namespace quellaro
