#pragma once

#include <optional>
#include <string>
#include <vector>

#include "analytics/aggregated_cue_event.h"
#include "analytics/api_response.h"
#include "analytics/network_cue_event.h"
#include "platform/dispatch/function.h"
#include "platform/foundation/network/url.h"
#include "platform/foundation/network/url_session.h"
#include "types/halvo_enums.h"

namespace quellaro {

// Posts a body and tells the answer on the main queue, later, once.
using PostRequest = Function<void(const NSURL& url, std::string body, URLSessionCompletion completion)>;

// Sends records to the ingestion endpoint, under an identity that belongs to this installation of the host application
// and to nobody's person. Without state; any thread.
class MixpanelAnalyticsServiceProvider {
 public:
  using Completion = Function<void(bool success, std::optional<UploadError> error)>;

  MixpanelAnalyticsServiceProvider();
  explicit MixpanelAnalyticsServiceProvider(PostRequest request) : request_(std::move(request)) {}

  // Starts one upload of all records and returns at once, with whether a request was made: an address that is absent or
  // none makes no request. The completion then never comes; otherwise it comes on the main queue, at most once.
  bool sendEvents(const std::vector<MixpanelAggregatedCueEvent>& records, QLHalvoEnvironment environment,
                  const std::optional<std::string>& url, Completion completion) const;

  // The installation's distinct id; made, and stored in the user defaults, when there is none.
  static std::string loadDistinctID();
  // Only what is stored.
  static std::optional<std::string> storedDistinctID();

  // "data=" and a JSON array of events, not percent-encoded; nothing when there is nothing to send.
  static std::optional<std::string> buildRequestBody(const std::vector<MixpanelAggregatedCueEvent>& records,
                                                     QLHalvoEnvironment environment, NSDate now,
                                                     const std::string& distinctID);
  static MixpanelNetworkAggregatedCueEvent eventFromRecord(const MixpanelAggregatedCueEvent& record,
                                                           QLHalvoEnvironment environment, NSDate now,
                                                           const std::string& distinctID);

 private:
  PostRequest request_;
};

}  // namespace quellaro
