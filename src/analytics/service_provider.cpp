#include "analytics/service_provider.h"

#include <new>
#include <utility>

#include "assets/http_manager.h"
#include "platform/foundation/application.h"
#include "platform/foundation/json/json_writer.h"
#include "platform/foundation/storage/user_defaults.h"
#include "platform/foundation/uuid.h"

namespace quellaro {

namespace {

std::string distinctIdKey() { return applicationIdentifier().value_or("") + ".mixpanel.distinctID"; }

// What an answer says; nothing when it is none of the service's. Memory that is short is asked for twice: records that
// have been accepted are not to be sent again.
std::optional<MixpanelAPIResponse> decoded(const std::string& data) {
  for (int attempt = 0; attempt < 2; ++attempt) {
    try {
      Result<MixpanelAPIResponse> response = MixpanelAPIResponse::decode(data);
      return response ? std::optional(std::move(*response)) : std::nullopt;
    } catch (const std::bad_alloc&) {
      continue;
    }
  }
  return std::nullopt;
}

// What an answer, or the lack of one, means.
void tellOutcome(const std::optional<std::string>& data, std::optional<NSError> transportError,
                 const MixpanelAnalyticsServiceProvider::Completion& completion) {
  std::optional<MixpanelAPIResponse> response = data ? decoded(*data) : std::nullopt;
  std::optional<UploadError> error;
  if (!response && transportError) error = std::move(*transportError);
  if (response && response->errorMessage && !response->errorMessage->empty())
    error = MixpanelAPIError{std::move(*response->errorMessage)};
  completion(response && response->status == MixpanelAPIResponse::kAccepted, std::move(error));
}

}  // namespace

MixpanelAnalyticsServiceProvider::MixpanelAnalyticsServiceProvider()
    : MixpanelAnalyticsServiceProvider([](const NSURL& url, std::string body, URLSessionCompletion completion) {
        QLHalvoHttpManager::request(url, "POST", std::move(body), {}, nullptr, std::move(completion));
      }) {}

bool MixpanelAnalyticsServiceProvider::sendEvents(const std::vector<MixpanelAggregatedCueEvent>& records,
                                                  QLHalvoEnvironment environment, const std::optional<std::string>& url,
                                                  Completion completion) const {
  const std::string distinctID = loadDistinctID();
  std::optional<std::string> body = buildRequestBody(records, environment, NSDate::now(), distinctID);
  const std::optional<NSURL> address = url ? NSURL::fromString(*url) : std::nullopt;
  if (!address || !body) return false;
  request_(*address, std::move(*body),
           [completion = std::move(completion)](const std::optional<std::string>& data,
                                                const std::optional<NSHTTPURLResponse>&, std::optional<NSError> error) {
             tellOutcome(data, std::move(error), completion);
           });
  return true;
}

std::optional<std::string> MixpanelAnalyticsServiceProvider::storedDistinctID() {
  return NSUserDefaults::standardUserDefaults().stringForKey(distinctIdKey());
}

std::string MixpanelAnalyticsServiceProvider::loadDistinctID() {
  if (std::optional<std::string> stored = storedDistinctID()) return std::move(*stored);
  std::string made = UUID().uuidString();
  NSUserDefaults::standardUserDefaults().setString(distinctIdKey(), made);
  return made;
}

MixpanelNetworkAggregatedCueEvent MixpanelAnalyticsServiceProvider::eventFromRecord(
    const MixpanelAggregatedCueEvent& record, QLHalvoEnvironment environment, NSDate now,
    const std::string& distinctID) {
  return {record.event, {record.properties, environment, now, distinctID}};
}

std::optional<std::string> MixpanelAnalyticsServiceProvider::buildRequestBody(
    const std::vector<MixpanelAggregatedCueEvent>& records, QLHalvoEnvironment environment, NSDate now,
    const std::string& distinctID) {
  JSONWriter writer;
  writer.beginArray();
  for (const MixpanelAggregatedCueEvent& record : records)
    eventFromRecord(record, environment, now, distinctID).writeJSON(writer);
  // The writer lets nothing but valid UTF-8 through, and an array has at least its brackets: there is always a body.
  return "data=" + writer.endArray().take();
}

}  // namespace quellaro
