// What is read from a bundle, a store, the Library or the reports' server as JSON: each text either is refused with a
// reason, or becomes values; and what was counted comes back from its own stored form as it was.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "analytics/aggregated_cue_event.h"
#include "analytics/api_response.h"
#include "assets/sdk_config.h"
#include "assets/version_config.h"

namespace {

template <class Value>
bool isReadable(const quellaro::Result<Value>& result) {
  if (!result && result.error().localizedDescription.empty()) std::abort();
  return static_cast<bool>(result);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quellaro;
  const std::string text(reinterpret_cast<const char*>(data), size);
  if (const auto config = decodeSDKConfig(text); isReadable(config) && *config == nullptr) std::abort();
  if (const auto entries = decodeVersionConfigs(text); isReadable(entries))
    for (const QLHalvoVersionConfig& entry : *entries)
      if (!entry.sdkVersions || !entry.cues || !entry.analytics) std::abort();
  if (const auto response = MixpanelAPIResponse::decode(text); isReadable(response))
    if (!isReadable(MixpanelAPIResponse::decode(response->encode()))) std::abort();
  if (const auto records = decodeAggregatedCueEvents(text); isReadable(records)) {
    const std::string stored = encodeAggregatedCueEvents(*records);
    const auto again = decodeAggregatedCueEvents(stored);
    if (!isReadable(again) || encodeAggregatedCueEvents(*again) != stored) std::abort();
  }
  return 0;
}
