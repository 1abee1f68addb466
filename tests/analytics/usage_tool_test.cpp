#include <gtest/gtest.h>

#include <atomic>

#include "analytics_fixture.h"
#include "drawing_commands/run_tool.h"
#include "platform/foundation/json/json_reader.h"
#include "platform/foundation/storage/user_defaults.h"
#include "support/scripted_server.h"

namespace quellaro {
namespace {

class UsageTool : public AnalyticsFixture {
 protected:
  std::string places() const {
    return " --app-id shopapp --bundle " + bundle().string() + " --library " + library().string();
  }
};

// The tool as a host: a period that is over is sent, refused, and sent again before the next play.
TEST_F(UsageTool, PlaysAreReportedToAServer) {
  std::atomic<int> answers = 0;
  const ScriptedServer server([&](const auto&, const ScriptedServer::Connection& connection) {
    // What counts is what it says, not the code it says it with.
    if (answers++ == 0)
      connection.answer(kRefused);
    else
      connection.send(std::string("HTTP/1.1 500 Error\r\nContent-Length: 12\r\n\r\n") + kAccepted);
  });
  std::filesystem::remove_all(bundle());
  std::filesystem::copy(QUELLARO_BUNDLE, bundle());
  writeFile(bundle() / "Info.json", R"({"CFBundleShortVersionString": "2.0.0"})");
  writeFile(bundle() / "version_config.json",
            R"([{"sdk_versions": ["2.0.0"], "cues": {"quellaro": {"version": "1", "filepath": "q/1"}},
                 "analytics": {"enable": true, "frequency": "Q", "url": ")" +
                server.address() + R"(/track?ip=1"}}])");
  play("quellaro", "0");  // long ago, by this process's clock
  const Ran run = halvo("play quellaro --type soundOnly --headless --settle --times 2" + places());
  EXPECT_EQ(run.status, 0) << run.output;
  EXPECT_EQ(current(), "quellaro/cornershop:2");
  EXPECT_EQ(readFile(failedPath()), "[]");
  const auto requests = server.requests();
  ASSERT_EQ(requests.size(), 2U);
  const std::string distinctID = MixpanelAnalyticsServiceProvider::storedDistinctID().value_or("none");
  for (const ScriptedServer::Request& request : requests) {
    EXPECT_EQ(request.method + " " + request.path, "POST /track?ip=1");
    EXPECT_EQ(request.headers.at("content-type"), "application/json");
    EXPECT_TRUE(request.body.starts_with(R"(data=[{"event":"quellaro_played")")) << request.body;
    EXPECT_NE(request.body.find(R"("distinct_id":")" + distinctID), std::string::npos) << request.body;
  }
}

TEST_F(UsageTool, ShowsBothFilesAsTheyWouldBeSentAndMakesNothing) {
  const std::filesystem::path nowhere = bundle().parent_path() / "nowhere";
  const Ran none = halvo("usage --json --bundle " + bundle().string() + " --library " + nowhere.string());
  EXPECT_EQ(none.status, 0) << none.output;
  EXPECT_NE(none.output.find(R"("distinctId":null)"), std::string::npos) << none.output;
  EXPECT_FALSE(std::filesystem::exists(nowhere));

  writeConfigs();
  play("old");
  wallClock_.advance(31 * kDay);
  play("new");
  endpoint_.answer(kRefused);
  NSUserDefaults::standardUserDefaults().synchronize();
  const Ran text = halvo("usage" + places());
  EXPECT_EQ(text.status, 0);
  for (const char* part : {"1 play, 1 fine, 0 failed", "data=[{\"event\":\"old_played\""})
    EXPECT_NE(text.output.find(part), std::string::npos) << text.output;

  const Ran run = halvo("usage --json --environment secondary" + places());
  EXPECT_EQ(run.status, 0);
  const auto document = JSONDocument::parse(run.output);
  ASSERT_TRUE(document) << run.output;
  const JSONValue root = document->root();
  EXPECT_EQ(root.member("enabled")->boolean(), false);
  EXPECT_EQ(root.member("frequency")->string(), "M");
  EXPECT_EQ(root.member("distinctId")->string(), MixpanelAnalyticsServiceProvider::storedDistinctID());
  const auto files = root.member("files")->elements();
  ASSERT_EQ(files.size(), 2U);
  EXPECT_EQ(files[0].member("records")->text(), readFile(currentPath()));
  EXPECT_EQ(files[1].member("records")->text(), readFile(failedPath()));
  const std::string_view body = files[1].member("body")->string().value();
  for (const char* part : {R"("token":"7d2b9e4f1a6c3e8b5d0f2a7c4e9b1d6f")", R"("cueName":"old")"})
    EXPECT_NE(body.find(part), std::string_view::npos) << body;
}

TEST_F(UsageTool, SaysWhatCannotBeRead) {
  writeFile(currentPath(), R"([{"event":"x"}])");
  const Ran run = halvo("usage" + places());
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.output.find("[0].properties"), std::string::npos) << run.output;
  EXPECT_EQ(halvo("usage extra").status, 2);
}

}  // namespace
}  // namespace quellaro
