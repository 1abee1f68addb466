#include <gtest/gtest.h>

#include <thread>

#include "analytics/api_response.h"
#include "analytics_fixture.h"
#include "platform/foundation/json_reader.h"
#include "platform/foundation/user_defaults.h"
#include "support/uuid_text.h"

namespace quellaro {
namespace {

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
  // The random identifier of every event by "UUID".
  static std::string withoutInsertIds(std::string body) {
    const std::string key = R"("$insert_id":")";
    for (std::size_t at = 0; (at = body.find(key, at)) != std::string::npos; at += key.size())
      if (isUUIDText(body.substr(at + key.size(), 36))) body.replace(at + key.size(), 36, "UUID");
    return body;
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
  EXPECT_EQ(withoutInsertIds(body), expected);
  EXPECT_NE(body, bodyOf(record("Bad Ems & Co=1"), QLHalvoEnvironment::secondary)) << "another insert id each time";
}

TEST_F(Upload, EnvironmentCityAndMissingIdentifier) {
  setApplicationIdentifier(std::nullopt);
  const std::string body = bodyOf(record(std::nullopt), QLHalvoEnvironment::primary);
  for (const char* part : {R"("token":"0f3c5a7e9b1d2f4a6c8e0b2d4f6a8c1e")", R"("city":null)", R"("applicationId":"")"})
    EXPECT_NE(body.find(part), std::string::npos) << part;
  EXPECT_NE(bodyOf(record(""), QLHalvoEnvironment::primary).find(R"("city":"")"), std::string::npos);
}

TEST_F(Upload, TheDistinctIdIsMadeOnceForEachApplication) {
  NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
  EXPECT_FALSE(MixpanelAnalyticsServiceProvider::storedDistinctID());
  const std::string made = MixpanelAnalyticsServiceProvider::loadDistinctID();
  EXPECT_TRUE(isUUIDText(made)) << made;
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
      {R"({"status":0})", {}, false, {}},
      {R"({"status":2})", {}, false, {}},
      {R"({"status":-1})", {}, false, {}},
      {R"({"status":"1"})", {}, false, {}},
      {R"({"status":true})", {}, false, {}},
      {R"({"status":1.5})", {}, false, {}},
      {R"({"status":1,"error":7})", {}, false, {}},
      {R"({"status":null})", {}, false, {}},
      {R"({})", {}, false, {}},
      {"1", {}, false, {}},
      {"[{\"status\":1}]", {}, false, {}},
      {"<html>busy</html>", {}, false, {}},
      {"<html>busy</html>", transport, false, transport},
      {"", {}, false, {}},
      {std::nullopt, transport, false, transport},
      {std::nullopt, {}, false, {}},
      {R"({"status":1})", transport, true, {}},
  };
  for (const Case& c : cases) {
    const MixpanelAnalyticsServiceProvider service(
        [&](const NSURL&, const std::string&, const URLSessionCompletion& completion) {
          completion(c.data, std::nullopt, c.transportError);
        });
    int calls = 0;
    const bool started = service.sendEvents({record("x")}, QLHalvoEnvironment::primary, "http://localhost/",
                                            [&](bool success, const std::optional<UploadError>& error) {
                                              ++calls;
                                              EXPECT_EQ(success, c.success) << c.data.value_or("none");
                                              EXPECT_EQ(error, c.error) << c.data.value_or("none");
                                            });
    EXPECT_TRUE(started);
    EXPECT_EQ(calls, 1);
  }
}

TEST(APIResponse, BothWays) {
  EXPECT_EQ((MixpanelAPIResponse{1, std::nullopt}).encode(), R"({"status":1})");
  EXPECT_EQ((MixpanelAPIResponse{-3, "a\"b"}).encode(), R"({"status":-3,"error":"a\"b"})");
  const auto read = MixpanelAPIResponse::decode(R"({"error":"a\"b","status":-3})");
  ASSERT_TRUE(read);
  EXPECT_EQ(read->status, -3);
  EXPECT_EQ(read->errorMessage, "a\"b");
}

// Against a server, through the real request.
class Ingestion : public Upload {
 protected:
  void useServer(const ScriptedServer& server) {
    manager_ = MixpanelAnalyticsManager::make();
    manager_->merchant = merchantNamed("Shop");
    manager_->environment = QLHalvoEnvironment::secondary;
    manager_->config = QLHalvoAnalyticsInfo{true, "M", server.address() + "/track?ip=1"};
  }
};

TEST_F(Ingestion, RequestsAreWellFormedAndResentAfterFailure) {
  const ScriptedServer server(answering({R"(<html>)", R"({"status":0,"error":"no"})", R"({"status":1})"}));
  useServer(server);
  play("old");
  wallClock_.advance(31 * kDay);
  for (const char* expected : {"new/shop:1", "new/shop:2", "new/shop:3", "new/shop:4"}) {
    play("new");
    driver_.settle();
    EXPECT_EQ(current(), expected);
    wallClock_.advance(1);
  }
  EXPECT_EQ(readFile(failedPath()), "[]");
  const auto requests = server.requests();
  ASSERT_EQ(requests.size(), 3U);
  for (std::size_t i = 0; i < requests.size(); ++i) {
    const ScriptedServer::Request& request = requests[i];
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.path, "/track?ip=1");
    EXPECT_EQ(request.headers.at("content-type"), "application/json");
    EXPECT_EQ(request.headers.at("content-length"), std::to_string(request.body.size()));
    const auto events = JSONDocument::parse(request.body.substr(5));
    ASSERT_TRUE(events) << request.body;
    EXPECT_EQ(request.body.substr(0, 5), "data=");
    const JSONValue properties = events->root().elements().front().member("properties").value();
    EXPECT_EQ(properties.members().size(), 30U);
    EXPECT_EQ(properties.member("time")->wholeNumber(),
              static_cast<std::int64_t>(kStart + 31 * kDay) + std::int64_t(i));
    EXPECT_EQ(properties.member("distinct_id")->string(), MixpanelAnalyticsServiceProvider::storedDistinctID());
    for (std::size_t j = 0; j < i; ++j) EXPECT_NE(request.body, requests[j].body) << "a new insert id";
  }
}

TEST_F(Ingestion, LateAnswersCutOnesAndNone) {
  struct Case {
    const char* name;
    ScriptedServer::Script script;
    const char* failed;
  };
  const Case cases[] = {
      {"late", [](auto&, auto& connection) { connection.pause(0.05), connection.answer(R"({"status":1})"); }, "absent"},
      {"status code",
       [](auto&, auto& connection) {
         connection.send("HTTP/1.1 500 Error\r\nContent-Length: 12\r\nConnection: close\r\n\r\n{\"status\":1}");
       },
       "absent"},
      {"cut",
       [](auto&, auto& connection) { connection.send("HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\n{\"status\":1}"); },
       "old/shop:1"},
      {"none", [](auto&, auto&) {}, "old/shop:1"},
      {"empty", [](auto&, auto& connection) { connection.answer(""); }, "old/shop:1"},
  };
  for (const Case& c : cases) {
    std::filesystem::remove(currentPath());
    std::filesystem::remove(failedPath());
    const ScriptedServer server(c.script);
    useServer(server);
    play("old");
    wallClock_.advance(31 * kDay);
    play("new");
    play("new");
    EXPECT_EQ(current(), "old/shop:1") << c.name;
    driver_.settle();
    EXPECT_EQ(current(), "new/shop:2") << c.name;
    EXPECT_EQ(failed(), c.failed) << c.name;
    EXPECT_EQ(server.requests().size(), 1U) << c.name;
  }
}

}  // namespace
}  // namespace quellaro
