#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "analytics/aggregated_cue_event.h"
#include "platform/foundation/date.h"
#include "platform/foundation/json/json_writer.h"
#include "types/halvo_enums.h"

namespace quellaro {

// The projects that usage is reported to.
inline constexpr std::string_view primaryToken = "0f3c5a7e9b1d2f4a6c8e0b2d4f6a8c1e";
inline constexpr std::string_view secondaryToken = "7d2b9e4f1a6c3e8b5d0f2a7c4e9b1d6f";

struct MixpanelNetworkAggregatedCueEventProperties {
  MixpanelAggregatedCueEventProperties eventProperties;
  QLHalvoEnvironment environment = QLHalvoEnvironment::primary;
  NSDate apiTime;  // when the batch was assembled
  std::string distinctID;
};

// A record as it is sent: flat, with the merchant's fields among the others.
struct MixpanelNetworkAggregatedCueEvent {
  std::string event;
  MixpanelNetworkAggregatedCueEventProperties properties;

  // Every time with a new random "$insert_id".
  void writeJSON(JSONWriter& writer) const;
};

// "yyyy-MM-dd'T'HH:mm:ss:SSS'Z'" in UTC: a colon stands before the milliseconds. Fields are cut off, not rounded: 42.9
// ms are 042. Any thread.
std::string networkTimeText(NSDate date);

}  // namespace quellaro
