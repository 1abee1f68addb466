#include "analytics/aggregated_cue_event.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace quellaro {
namespace {

using Properties = MixpanelAggregatedCueEventProperties;
constexpr auto kBoth = QLHalvoType::animationAndSound;
constexpr auto kSound = QLHalvoType::soundOnly;
constexpr auto kAnimation = QLHalvoType::animationOnly;

// The counters that are not 0, by their stored names, in the stored order.
std::string counted(const Properties& p) {
  const std::pair<const char*, std::int64_t> counters[] = {
      {"total", p.totalCount},
      {"success", p.successCount},
      {"failure", p.failureCount},
      {"animationAndSound", p.animationAndSoundCount},
      {"animationAndSoundFailure", p.animationAndSoundFailureCount},
      {"animationOnly", p.animationOnlyCount},
      {"animationFailure", p.animationFailureCount},
      {"soundOnly", p.soundOnlyCount},
      {"soundFailure", p.soundFailureCount},
      {"unknownFailure", p.unknownFailureCount},
      {"mutedPlay", p.mutedPlayCount},
      {"hapticsPlay", p.hapticsPlayCount}};
  std::string text;
  for (const auto& [name, count] : counters)
    if (count != 0) text += std::string(text.empty() ? "" : " ") + name + (count == 1 ? "" : "!");
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
      {kBoth, 800, 904, none, true, "total failure unknownFailure mutedPlay"},
      {kBoth, 801, 800, none, false, "total failure"},
      {kBoth, 906, 907, none, false, "total failure"},
      {kBoth, 0, -1, none, true, "total failure mutedPlay"},
      {kSound, 907, 800, none, false, "total success soundOnly"},
      {kSound, 800, 906, none, false, "total failure soundFailure"},
      {kSound, 800, 907, none, false, "total failure"},
      {kSound, 905, 800, none, true, "total success soundOnly unknownFailure mutedPlay"},
      {kSound, 800, 801, none, false, "total failure"},
      {kAnimation, 800, 906, none, true, "total success animationOnly"},
      {kAnimation, 907, 800, none, false, "total failure animationFailure"},
      {kAnimation, 906, 800, none, false, "total failure"},
      {kAnimation, 904, 904, none, true, "total failure unknownFailure"},
      {kBoth, 800, 800, ComponentStatus::Played, false, "total success animationAndSound hapticsPlay"},
      {kBoth, 907, 906, ComponentStatus::Played, false, "total failure animationAndSoundFailure hapticsPlay"},
      {kBoth, 800, 800, ComponentStatus::Ready, false, "total success animationAndSound"},
      {kBoth, 800, 800, ComponentStatus::Error, false, "total success animationAndSound"},
      {kBoth, 800, 800, ComponentStatus::Not_Ready, true, "total success animationAndSound mutedPlay"},
  };
  for (const Case& c : cases) {
    Properties properties;
    properties.countPlay(c.type, c.animation, c.sound, c.haptics, c.muted);
    EXPECT_EQ(counted(properties), c.expected)
        << rawValueOf(c.type) << " " << c.animation << " " << c.sound << " muted " << c.muted;
  }
}

TEST(CountPlay, LeavesDatesAndFlagsAndStopsAtTheLargestCount) {
  Properties properties;
  properties.startDate = properties.endDate = {1};
  properties.totalCount = properties.failureCount = std::numeric_limits<std::int64_t>::max();
  properties.countPlay(kBoth, 1, 1, ComponentStatus::Played, false);
  EXPECT_EQ(properties.totalCount, std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(properties.failureCount, std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(properties.endDate, NSDate{1});
  EXPECT_FALSE(properties.hapticsEnabled || properties.hapticsSupported);
}

constexpr const char* kRecord =
    R"({"event":"shop_played","properties":{"startDate":741521340.042,"endDate":0.1,"sdkVersion":"2.0.0",)"
    R"("merchant":{"merchantName":"","countryCode":"US","merchantCategoryCodes":["5411",""],"merchantId":"m\"1"},)"
    R"("cueName":"shop","cueVersion":"3","total":78,"success":1,"failure":2,"animationAndSound":3,)"
    R"("animationAndSoundFailure":4,"animationOnly":5,"animationFailure":6,"soundOnly":7,"soundFailure":8,)"
    R"("unknownFailure":9,"mutedPlay":10,"hapticsPlay":11,"hapticsEnabled":false,"hapticsSupported":true}})";

std::string with(const std::string& from, const std::string& to) {
  std::string text = std::string("[") + kRecord + "]";
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return text.replace(at, from.size(), to);
}

TEST(RecordJSON, ReadsAndWritesEveryField) {
  const auto events = decodeAggregatedCueEvents(with("US", "US"));
  ASSERT_TRUE(events) << events.error().description();
  const MixpanelAggregatedCueEvent& event = events->front();
  const Properties& p = event.properties;
  EXPECT_EQ(event.event, "shop_played");
  EXPECT_EQ(p.startDate, NSDate{741521340.042});
  EXPECT_EQ(p.merchant->merchantId, "m\"1");
  EXPECT_EQ(p.totalCount, 78);
  EXPECT_EQ(p.successCount, 1);
  EXPECT_EQ(p.failureCount, 2);
  EXPECT_EQ(p.animationAndSoundCount, 3);
  EXPECT_EQ(p.animationAndSoundFailureCount, 4);
  EXPECT_EQ(p.animationOnlyCount, 5);
  EXPECT_EQ(p.animationFailureCount, 6);
  EXPECT_EQ(p.soundOnlyCount, 7);
  EXPECT_EQ(p.soundFailureCount, 8);
  EXPECT_EQ(p.unknownFailureCount, 9);
  EXPECT_EQ(p.mutedPlayCount, 10);
  EXPECT_EQ(p.hapticsPlayCount, 11);
  EXPECT_FALSE(p.hapticsEnabled);
  EXPECT_TRUE(p.hapticsSupported);
  EXPECT_EQ(encodeAggregatedCueEvents(*events), with("US", "US"));
  EXPECT_EQ(encodeAggregatedCueEvents({}), "[]");
}

TEST(RecordJSON, OptionalKeysHaveDefaults) {
  for (const std::string& text : {with(R"(,"hapticsPlay":11,"hapticsEnabled":false,"hapticsSupported":true)", ""),
                                  with(R"("hapticsPlay":11,"hapticsEnabled":false,"hapticsSupported":true)",
                                       R"("hapticsPlay":null,"hapticsEnabled":null,"hapticsSupported":null)")}) {
    const auto events = decodeAggregatedCueEvents(text);
    ASSERT_TRUE(events) << events.error().description();
    EXPECT_EQ(events->front().properties.hapticsPlayCount, 0);
    EXPECT_TRUE(events->front().properties.hapticsEnabled);
    EXPECT_FALSE(events->front().properties.hapticsSupported);
  }
}

TEST(RecordJSON, AnythingElseMakesTheWholeFileUnreadable) {
  const char* required[] = {"\"event\"",
                            "\"properties\"",
                            "\"startDate\"",
                            "\"endDate\"",
                            "\"sdkVersion\"",
                            "\"merchant\"",
                            "\"cueName\"",
                            "\"cueVersion\"",
                            "\"total\"",
                            "\"success\"",
                            "\"failure\"",
                            "\"animationAndSound\"",
                            "\"animationOnly\"",
                            "\"animationFailure\"",
                            "\"soundOnly\"",
                            "\"soundFailure\"",
                            "\"mutedPlay\"",
                            "\"unknownFailure\"",
                            "\"merchantName\"",
                            "\"merchantId\"",
                            "\"countryCode\"",
                            "\"merchantCategoryCodes\"",
                            "\"animationAndSoundFailure\""};
  for (const char* key : required) EXPECT_FALSE(decodeAggregatedCueEvents(with(key, "\"other\""))) << key;
  const std::pair<const char*, const char*> wrong[] = {{"78", "\"78\""},
                                                       {"78", "7.8"},
                                                       {"78", "9223372036854775808"},
                                                       {"78", "null"},
                                                       {"741521340.042", "\"\""},
                                                       {"\"3\"", "3"},
                                                       {":11", ":\"11\""},
                                                       {":false", ":0"},
                                                       {":true", ":\"true\""},
                                                       {"[\"5411\"", "[5411"},
                                                       {"\"shop_played\"", "null"},
                                                       {"[\"5411\",\"\"]", "\"5411\""}};
  for (const auto& [from, to] : wrong) EXPECT_FALSE(decodeAggregatedCueEvents(with(from, to))) << from << " " << to;
  for (const char* text : {"", "{}", "null", "[1]", "[[]]", "[{}]", "[", "<html>", "\xff"})
    EXPECT_FALSE(decodeAggregatedCueEvents(text)) << text;
}

TEST(RecordJSON, DatesReadBackExactly) {
  const ComponentStatus none = ComponentStatus::Not_Required;
  const auto merchant = QLHalvoMerchant::make("Shop", "US", std::nullopt, {"1"}, std::nullopt);
  auto event = MixpanelAggregatedCueEvent::create("shop", "1", merchant, "2.0.0", true, false);
  event.properties.countPlay(kBoth, 800, 800, none, false);
  for (const double seconds : {0.0, 1e-9, 741521340.1, std::nextafter(741521340.1, 0), -978307200.5, 1e300, 5e-324}) {
    event.properties.startDate = {seconds};
    const auto read = decodeAggregatedCueEvents(encodeAggregatedCueEvents({event}));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->front().properties.startDate.timeIntervalSinceReferenceDate, seconds);
  }
}

}  // namespace
}  // namespace quellaro
