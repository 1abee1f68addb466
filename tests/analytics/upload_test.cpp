#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <regex>

#include "analytics/api_response.h"
#include "analytics/reporting_period.h"
#include "analytics_fixture.h"
#include "platform/foundation/storage/user_defaults.h"

namespace quellaro {
namespace {

// The random identifiers by "UUID".
std::string withoutUUIDs(const std::string& text) {
  return std::regex_replace(text, std::regex("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}"), "UUID");
}

class Upload : public AnalyticsFixture {
 protected:
  static MixpanelAggregatedCueEvent record(std::optional<std::string> city) {
    const auto merchant = QLHalvoMerchant::make("Corner \"Shop\"", "US", std::move(city), {"5411", ""}, std::nullopt);
    auto event = MixpanelAggregatedCueEvent::create("shop", "3", merchant, "2.0.0", true, false);
    MixpanelAggregatedCueEventProperties& p = event.properties;
    p.startDate = NSDate::withTimeIntervalSince1970(1719828540.042);
    p.endDate = {741607740};
    std::int64_t count = 0;
    for (std::int64_t* counter :
         {&p.totalCount, &p.successCount, &p.failureCount, &p.animationAndSoundCount, &p.animationAndSoundFailureCount,
          &p.animationOnlyCount, &p.animationFailureCount, &p.soundOnlyCount, &p.soundFailureCount,
          &p.unknownFailureCount, &p.mutedPlayCount, &p.hapticsPlayCount})
      *counter = ++count;
    return event;
  }
  static std::string bodyOf(const MixpanelAggregatedCueEvent& event, QLHalvoEnvironment environment) {
    return MixpanelAnalyticsServiceProvider::buildRequestBody({event}, environment,
                                                              NSDate::withTimeIntervalSince1970(1720000000.9), "ID-1")
        .value_or("none");
  }
};

TEST_F(Upload, TheBodyToTheLetter) {
  const std::string expected =
      R"(data=[{"event":"shop_played","properties":{"token":"7d2b9e4f1a6c3e8b5d0f2a7c4e9b1d6f","time":1720000000,)"
      R"("distinct_id":"ID-1","$insert_id":"UUID","startTime":"2024-07-01T10:09:00:042Z",)"
      R"("endTime":"2024-07-02T10:09:00:000Z","sdkVersion":"2.0.0","applicationId":"shopapp","channel":"iOS",)"
      R"("merchantName":"Corner \"Shop\"","merchantId":"corner\"shop\"","mcc":["5411",""],"country":"US",)"
      R"("city":"Bad Ems & Co=1","cueName":"shop","cueVersion":"3","total":1,"success":2,"failure":3,)"
      R"("animationAndSound":4,"animationAndSoundFailure":5,"animationOnly":6,"animationFailure":7,"soundOnly":8,)"
      R"("soundFailure":9,"unknownFailure":10,"mutedPlay":11,"hapticsPlay":12,"hapticsSupported":false,)"
      R"("hapticsEnabled":true}}])";
  const std::string body = bodyOf(record("Bad Ems & Co=1"), QLHalvoEnvironment::secondary);
  EXPECT_EQ(withoutUUIDs(body), expected);
  EXPECT_NE(body, bodyOf(record("Bad Ems & Co=1"), QLHalvoEnvironment::secondary)) << "another insert id each time";

  setApplicationIdentifier(std::nullopt);
  const std::string other = bodyOf(record(std::nullopt), QLHalvoEnvironment::primary);
  for (const char* part : {R"("token":"0f3c5a7e9b1d2f4a6c8e0b2d4f6a8c1e")", R"("city":null)", R"("applicationId":"")"})
    EXPECT_NE(other.find(part), std::string::npos) << part;
}

TEST_F(Upload, TimesHaveAColonBeforeTheirMilliseconds) {
  const std::pair<double, const char*> cases[] = {
      {1719828540.001, "2024-07-01T10:09:00:001Z"},     {1719828540.0429, "2024-07-01T10:09:00:042Z"},
      {1719828540.9999997, "2024-07-01T10:09:01:000Z"}, {-0.25, "1969-12-31T23:59:59:750Z"},
      {253402300800, "10000-01-01T00:00:00:000Z"},      {-62135596801, "0001-12-31T23:59:59:000Z"},
  };
  for (const auto& [seconds, text] : cases)
    EXPECT_EQ(networkTimeText(NSDate::withTimeIntervalSince1970(seconds)), text) << seconds;
  for (const double seconds : {1e300, -1e300, std::numeric_limits<double>::infinity(), std::nan("")}) {
    EXPECT_TRUE(networkTimeText({seconds}).ends_with(":000Z"));
    EXPECT_TRUE(isPeriodElapsed({seconds}, "M"));
  }
}

TEST_F(Upload, TheDistinctIdIsMadeOnceForEachApplication) {
  NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
  EXPECT_FALSE(MixpanelAnalyticsServiceProvider::storedDistinctID());
  const std::string made = MixpanelAnalyticsServiceProvider::loadDistinctID();
  EXPECT_EQ(withoutUUIDs(made), "UUID");
  EXPECT_EQ(MixpanelAnalyticsServiceProvider::loadDistinctID(), made);
  EXPECT_EQ(defaults.stringForKey("shopapp.mixpanel.distinctID"), made);
  setApplicationIdentifier(std::nullopt);
  defaults.setString(".mixpanel.distinctID", "theirs");
  EXPECT_EQ(MixpanelAnalyticsServiceProvider::loadDistinctID(), "theirs");
}

TEST_F(Upload, EveryKindOfAnswer) {
  const NSError transport{"NSURLErrorDomain", -1004, "Could not connect to the server."};
  struct Case {
    std::optional<std::string> data;
    std::optional<NSError> transportError;
    bool success;
    std::optional<UploadError> error;
  };
  const Case cases[] = {
      {R"({"status":1})", {}, true, {}},
      {R"({"status":1.0,"error":null,"more":[1]})", {}, true, {}},
      {R"({"status":1,"error":""})", {}, true, {}},
      {R"({"error":"odd","status":1})", {}, true, MixpanelAPIError{"odd"}},
      {R"({"status":0,"error":"no"})", {}, false, MixpanelAPIError{"no"}},
      {R"({"status":2})", {}, false, {}},
      {R"({"status":"1"})", {}, false, {}},
      {R"({"status":1,"error":7})", {}, false, {}},
      {R"({})", {}, false, {}},
      {R"([{"status":1}])", {}, false, {}},
      {"<html>busy</html>", transport, false, transport},
      {"", {}, false, {}},
      {std::nullopt, transport, false, transport},
      {R"({"status":1})", transport, true, {}},
  };
  for (const Case& c : cases) {
    const MixpanelAnalyticsServiceProvider service(
        [&](const NSURL&, const std::string&, const URLSessionCompletion& completion) {
          completion(c.data, std::nullopt, c.transportError);
        });
    int calls = 0;
    EXPECT_TRUE(service.sendEvents({record("x")}, QLHalvoEnvironment::primary, "http://localhost/",
                                   [&](bool success, const std::optional<UploadError>& error) {
                                     ++calls;
                                     EXPECT_EQ(success, c.success) << c.data.value_or("none");
                                     EXPECT_EQ(error, c.error) << c.data.value_or("none");
                                   }));
    EXPECT_EQ(calls, 1);
  }
  EXPECT_EQ((MixpanelAPIResponse{1, std::nullopt}).encode(), R"({"status":1})");
  EXPECT_EQ((MixpanelAPIResponse{-3, "a\"b"}).encode(), R"({"status":-3,"error":"a\"b"})");
}

}  // namespace
}  // namespace quellaro
