#include <string_view>
#include <utility>

#include "analytics/aggregated_cue_event.h"
#include "analytics/cue_event_keys.h"
#include "platform/foundation/json/json_reader.h"

namespace quellaro {

namespace {

using Keys = MixpanelAggregatedCueEventKeys;
using Properties = MixpanelAggregatedCueEventProperties;

constexpr std::string_view kEvent = "event";
constexpr std::string_view kProperties = "properties";

struct Counter {
  std::string_view key;
  std::int64_t Properties::*count;
};

constexpr Counter kRequiredCounters[] = {
    {Keys::epTotalCount, &Properties::totalCount},
    {Keys::epSuccessCount, &Properties::successCount},
    {Keys::epFailureCount, &Properties::failureCount},
    {Keys::epAnimationAndSoundCount, &Properties::animationAndSoundCount},
    {Keys::epAnimationAndSoundFailureCount, &Properties::animationAndSoundFailureCount},
    {Keys::epAnimationOnlyCount, &Properties::animationOnlyCount},
    {Keys::epAnimationFailureCount, &Properties::animationFailureCount},
    {Keys::epSoundOnlyCount, &Properties::soundOnlyCount},
    {Keys::epSoundFailureCount, &Properties::soundFailureCount},
    {Keys::epUnknownFailureCount, &Properties::unknownFailureCount},
    {Keys::epMutedPlayCount, &Properties::mutedPlayCount},
};

bool optionalBoolean(const JSONField& field, bool whenAbsent) {
  return field.isPresent() ? field.boolean() : whenAbsent;
}

Properties propertiesFromJSON(const JSONField& json) {
  Properties properties;
  properties.startDate = {json.required(Keys::epStartDate).number()};
  properties.endDate = {json.required(Keys::epEndDate).number()};
  properties.sdkVersion = json.required(Keys::epSdkVersion).string();
  properties.merchant = QLHalvoMerchant::fromJSON(json.required(Keys::epMerchant));
  properties.cueName = json.required(Keys::epCueName).string();
  properties.cueVersion = json.required(Keys::epCueVersion).string();
  for (const Counter& counter : kRequiredCounters) properties.*counter.count = json.required(counter.key).wholeNumber();
  properties.hapticsPlayCount = json.optional(Keys::epHapticsPlayCount).wholeNumber();
  properties.hapticsEnabled =
      optionalBoolean(json.optional(Keys::ephapticsEnabled), Properties::kHapticsEnabledWhenAbsent);
  properties.hapticsSupported =
      optionalBoolean(json.optional(Keys::ephapticsSupported), Properties::kHapticsSupportedWhenAbsent);
  return properties;
}

void writeProperties(const Properties& properties, JSONWriter& writer) {
  writer.beginObject();
  writer.key(Keys::epStartDate).number(properties.startDate.timeIntervalSinceReferenceDate);
  writer.key(Keys::epEndDate).number(properties.endDate.timeIntervalSinceReferenceDate);
  writer.key(Keys::epSdkVersion).string(properties.sdkVersion);
  writer.key(Keys::epMerchant);
  properties.merchant->writeJSON(writer);
  writer.key(Keys::epCueName).string(properties.cueName);
  writer.key(Keys::epCueVersion).string(properties.cueVersion);
  for (const Counter& counter : kRequiredCounters) writer.key(counter.key).integer(properties.*counter.count);
  writer.key(Keys::epHapticsPlayCount).integer(properties.hapticsPlayCount);
  writer.key(Keys::ephapticsEnabled).boolean(properties.hapticsEnabled);
  writer.key(Keys::ephapticsSupported).boolean(properties.hapticsSupported);
  writer.endObject();
}

}  // namespace

MixpanelAggregatedCueEvent MixpanelAggregatedCueEvent::fromJSON(const JSONField& json) {
  std::string name = json.required(kEvent).string();
  return {std::move(name), propertiesFromJSON(json.required(kProperties))};
}

void MixpanelAggregatedCueEvent::writeJSON(JSONWriter& writer) const {
  writer.beginObject().key(kEvent).string(event).key(kProperties);
  writeProperties(properties, writer);
  writer.endObject();
}

Result<std::vector<MixpanelAggregatedCueEvent>> decodeAggregatedCueEvents(std::string json) {
  const Result<JSONDocument> document = JSONDocument::parse(std::move(json));
  if (!document) return document.error();
  JSONDecoder decoder(document->root());
  std::vector<MixpanelAggregatedCueEvent> events;
  for (const JSONField& element : JSONField::root(decoder).elements()) {
    events.push_back(MixpanelAggregatedCueEvent::fromJSON(element));
    if (decoder.error()) break;
  }
  if (decoder.error()) return *decoder.error();
  return events;
}

std::string encodeAggregatedCueEvents(const std::vector<MixpanelAggregatedCueEvent>& events) {
  JSONWriter writer;
  writer.beginArray();
  for (const MixpanelAggregatedCueEvent& event : events) event.writeJSON(writer);
  return writer.endArray().take();
}

}  // namespace quellaro
