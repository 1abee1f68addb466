#include "analytics/network_cue_event.h"

#include <array>
#include <cinttypes>
#include <cmath>
#include <cstdio>

#include "analytics/cue_event_keys.h"
#include "platform/foundation/application.h"
#include "platform/foundation/calendar.h"
#include "platform/foundation/uuid.h"

namespace quellaro {

namespace {

using Keys = MixpanelNetworkAggregatedCueEventKeys;

// The service files its events by this name, on whatever system they arise.
constexpr std::string_view kChannel = "iOS";

std::string_view tokenFor(QLHalvoEnvironment environment) {
  return environment == QLHalvoEnvironment::secondary ? secondaryToken : primaryToken;
}

// No wall clock says a time that does not fit.
std::int64_t wholeSecondsSince1970(NSDate date) { return static_cast<std::int64_t>(date.timeIntervalSince1970()); }

void writeIdentity(const MixpanelNetworkAggregatedCueEventProperties& properties, JSONWriter& writer) {
  writer.key(Keys::token).string(tokenFor(properties.environment));
  writer.key(Keys::time).integer(wholeSecondsSince1970(properties.apiTime));
  writer.key(Keys::distintID).string(properties.distinctID);
  writer.key(Keys::insertID).string(UUID().uuidString());
  writer.key(Keys::startTime).string(networkTimeText(properties.eventProperties.startDate));
  writer.key(Keys::endTime).string(networkTimeText(properties.eventProperties.endDate));
  writer.key(Keys::sdkVersion).string(properties.eventProperties.sdkVersion);
  writer.key(Keys::applicationID).string(applicationIdentifier().value_or(""));
  writer.key(Keys::channel).string(kChannel);
}

void writeMerchant(const QLHalvoMerchant& merchant, JSONWriter& writer) {
  writer.key(Keys::merchantName).string(merchant.merchantName);
  writer.key(Keys::merchantID).string(merchant.merchantId);
  writer.key(Keys::merchantCategories).beginArray();
  for (const std::string& code : merchant.merchantCategoryCodes) writer.string(code);
  writer.endArray();
  writer.key(Keys::countryCode).string(merchant.countryCode);
  writer.key(Keys::cities);
  if (merchant.city)
    writer.string(*merchant.city);
  else
    writer.null();
}

void writeCounts(const MixpanelAggregatedCueEventProperties& counts, JSONWriter& writer) {
  writer.key(Keys::totalCount).integer(counts.totalCount);
  writer.key(Keys::successCount).integer(counts.successCount);
  writer.key(Keys::failureCount).integer(counts.failureCount);
  writer.key(Keys::animationAndSoundCount).integer(counts.animationAndSoundCount);
  writer.key(Keys::animationAndSoundFailureCount).integer(counts.animationAndSoundFailureCount);
  writer.key(Keys::animationOnlyCount).integer(counts.animationOnlyCount);
  writer.key(Keys::animationFailureCount).integer(counts.animationFailureCount);
  writer.key(Keys::soundOnlyCount).integer(counts.soundOnlyCount);
  writer.key(Keys::soundFailureCount).integer(counts.soundFailureCount);
  writer.key(Keys::unknownFailureCount).integer(counts.unknownFailureCount);
  writer.key(Keys::mutedPlayCount).integer(counts.mutedPlayCount);
  writer.key(Keys::hapticsPlayCount).integer(counts.hapticsPlayCount);
  writer.key(Keys::hapticsSupported).boolean(counts.hapticsSupported);
  writer.key(Keys::hapticsEnabled).boolean(counts.hapticsEnabled);
}

}  // namespace

std::string networkTimeText(NSDate date) {
  // The double nearest to 42 ms may lie just below it. A microsecond is the finest that today's dates resolve, so
  // rounding to that finds what was meant before anything is cut off.
  const double seconds = date.timeIntervalSince1970();
  double whole = std::floor(seconds);
  double microseconds = std::round((seconds - whole) * 1e6);
  if (microseconds >= 1e6) {
    whole += 1;
    microseconds = 0;
  }
  const int millisecond = std::isfinite(microseconds) ? static_cast<int>(microseconds / 1000) : 0;
  const NSDateComponents fields = NSCalendar::componentsInUTC(NSDate::withTimeIntervalSince1970(whole));
  // Counted within its era: the year 0 is the first before the common era.
  const std::int64_t year = fields.year > 0 ? fields.year : 1 - fields.year;
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04" PRId64 "-%02d-%02dT%02d:%02d:%02d:%03dZ", year, fields.month,
                fields.day, fields.hour, fields.minute, fields.second, millisecond);
  return text.data();
}

void MixpanelNetworkAggregatedCueEvent::writeJSON(JSONWriter& writer) const {
  writer.beginObject().key("event").string(event).key("properties").beginObject();
  writeIdentity(properties, writer);
  writeMerchant(*properties.eventProperties.merchant, writer);
  writer.key(Keys::cueName).string(properties.eventProperties.cueName);
  writer.key(Keys::cueVersion).string(properties.eventProperties.cueVersion);
  writeCounts(properties.eventProperties, writer);
  writer.endObject().endObject();
}

}  // namespace quellaro
