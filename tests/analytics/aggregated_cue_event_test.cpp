#include "analytics/aggregated_cue_event.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/foundation/json/json_reader.h"

namespace quellaro {
namespace {

constexpr auto kBoth = QLHalvoType::animationAndSound;
constexpr auto kSound = QLHalvoType::soundOnly;
constexpr auto kAnimation = QLHalvoType::animationOnly;

// The counters that are not 0, by their stored names, in the stored order.
std::string counted(const MixpanelAggregatedCueEventProperties& properties) {
  MixpanelAggregatedCueEvent event{"", properties};
  event.properties.merchant = QLHalvoMerchant::make("Shop", "US", std::nullopt, {"1"}, std::nullopt);
  const auto document = JSONDocument::parse(encodeAggregatedCueEvents({event}));
  std::string text;
  for (const auto& [key, value] : document->root().elements().front().member("properties")->members())
    if (const std::int64_t count = value.wholeNumber().value_or(0); count != 0)
      text.append(text.empty() ? "" : " ").append(key).append(count == 1 ? "" : "!");
  return text;
}

TEST(CountPlay, EveryRule) {
  struct Case {
    QLHalvoType type;
    std::int64_t animation, sound;
    ComponentStatus haptics;
    bool muted;
    const char* expected;
  };
  const ComponentStatus none = ComponentStatus::Not_Required;
  const Case cases[] = {
      {kBoth, 800, 800, none, false, "total success animationAndSound"},
      {kBoth, 907, 906, none, false, "total failure animationAndSoundFailure"},
      {kBoth, 907, 800, none, false, "total failure animationFailure soundOnly"},
      {kBoth, 800, 906, none, false, "total failure animationOnly soundFailure"},
      {kBoth, 904, 904, none, false, "total failure unknownFailure"},
      {kBoth, 905, 800, none, false, "total failure unknownFailure"},
      {kBoth, 801, 800, none, true, "total failure mutedPlay"},
      {kBoth, 906, 907, none, false, "total failure"},
      {kSound, 907, 800, none, false, "total success soundOnly"},
      {kSound, 800, 906, none, false, "total failure soundFailure"},
      {kSound, 800, 907, none, false, "total failure"},
      {kSound, 905, 800, none, true, "total success soundOnly unknownFailure mutedPlay"},
      {kAnimation, 800, 906, none, true, "total success animationOnly"},
      {kAnimation, 907, 800, none, false, "total failure animationFailure"},
      {kAnimation, 906, 904, none, false, "total failure unknownFailure"},
      {kBoth, 907, 906, ComponentStatus::Played, false, "total failure animationAndSoundFailure hapticsPlay"},
      {kBoth, 800, 800, ComponentStatus::Ready, false, "total success animationAndSound"},
      {kBoth, 800, 800, ComponentStatus::Error, false, "total success animationAndSound"},
  };
  for (const Case& c : cases) {
    MixpanelAggregatedCueEventProperties properties;
    properties.countPlay(c.type, c.animation, c.sound, c.haptics, c.muted);
    EXPECT_EQ(counted(properties), c.expected)
        << rawValueOf(c.type) << " " << c.animation << " " << c.sound << " muted " << c.muted;
  }
  MixpanelAggregatedCueEventProperties full;
  full.totalCount = std::numeric_limits<std::int64_t>::max();
  full.countPlay(kBoth, 1, 1, none, false);
  EXPECT_EQ(full.totalCount, std::numeric_limits<std::int64_t>::max());
}

constexpr const char* kRecord =
    R"([{"event":"shop_played","properties":{"startDate":741521340.042,"endDate":0.1,"sdkVersion":"2.0.0",)"
    R"("merchant":{"merchantName":"","countryCode":"US","merchantCategoryCodes":["5411",""],"merchantId":"m\"1"},)"
    R"("cueName":"shop","cueVersion":"3","total":78,"success":1,"failure":2,"animationAndSound":3,)"
    R"("animationAndSoundFailure":4,"animationOnly":5,"animationFailure":6,"soundOnly":7,"soundFailure":8,)"
    R"("unknownFailure":9,"mutedPlay":10,"hapticsPlay":11,"hapticsEnabled":false,"hapticsSupported":true}}])";

std::string with(const std::string& from, const std::string& to) {
  std::string text = kRecord;
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return text.replace(at, from.size(), to);
}

TEST(RecordJSON, ReadsAndWritesEveryField) {
  const auto events = decodeAggregatedCueEvents(kRecord);
  ASSERT_TRUE(events) << events.error().description();
  EXPECT_EQ(encodeAggregatedCueEvents(*events), kRecord);
  const MixpanelAggregatedCueEventProperties& p = events->front().properties;
  EXPECT_EQ(p.startDate, NSDate{741521340.042});
  EXPECT_EQ(p.sdkVersion, "2.0.0");
  EXPECT_EQ(p.cueVersion, "3");
  EXPECT_FALSE(p.hapticsEnabled);
  EXPECT_TRUE(p.hapticsSupported);
}

TEST(RecordJSON, OptionalKeysHaveDefaultsAndAllOthersAreRequired) {
  for (const std::string& text : {with(R"(,"hapticsPlay":11,"hapticsEnabled":false,"hapticsSupported":true)", ""),
                                  with(R"("hapticsPlay":11,"hapticsEnabled":false,"hapticsSupported":true)",
                                       R"("hapticsPlay":null,"hapticsEnabled":null,"hapticsSupported":null)")}) {
    const auto events = decodeAggregatedCueEvents(text);
    ASSERT_TRUE(events) << events.error().description();
    EXPECT_EQ(events->front().properties.hapticsPlayCount, 0);
    EXPECT_TRUE(events->front().properties.hapticsEnabled);
    EXPECT_FALSE(events->front().properties.hapticsSupported);
  }
  const auto document = JSONDocument::parse(kRecord);
  const JSONValue record = document->root().elements().front();
  for (const auto& members : {record.members(), record.member("properties")->members()})
    for (const auto& [key, value] : members)
      EXPECT_NE(!decodeAggregatedCueEvents(with('"' + std::string(key) + '"', "\"other\"")), key.starts_with("haptics"))
          << key;
}

TEST(RecordJSON, AnythingElseMakesTheWholeFileUnreadable) {
  const std::pair<const char*, const char*> wrong[] = {
      {"78", "\"78\""}, {"78", "7.8"},       {"78", "9223372036854775808"},
      {"78", "null"},   {"\"3\"", "3"},      {"741521340.042", "\"\""},
      {":false", ":0"}, {"\"m\\\"1\"", "1"}, {"\"shop_played\"", "null"},
  };
  for (const auto& [from, to] : wrong) EXPECT_FALSE(decodeAggregatedCueEvents(with(from, to))) << from << " " << to;
  for (const char* text : {"", "{}", "[1]", "[{}]", "[", "\xff"}) EXPECT_FALSE(decodeAggregatedCueEvents(text)) << text;
}

}  // namespace
}  // namespace quellaro
