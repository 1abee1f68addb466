#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "assets/upgrade_fixture.h"

namespace quellaro {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using Lines = std::vector<std::string>;

const std::string kStarted = "QuellaroHalvo: New halvo update found download started\n";
const std::string kDone = "QuellaroHalvo: New halvo upgraded successfully\n";

class Upgrade : public UpgradeFixture {};

TEST_F(Upgrade, InstallsWhatTheStoreListsAndThenKeepsQuietForAWeek) {
  publish("7", "q/7");
  installActive("1");
  writeFile(staging() / "audio.mp3", "of an earlier attempt");
  writeFile(staging() / "audio.mp3.4711-0.tmp", "of a process that was killed");
  const auto controller = makeController();
  controller->checkForUpgrade();
  EXPECT_FALSE(controller->didRemoteUpgradeFound());
  driver_.settle();

  std::set<std::string> paths;
  for (const auto& request : server_.requests()) {
    paths.insert(request.method + " " + request.path);
    EXPECT_EQ(request.headers.at("content-type"), "application/json");
    EXPECT_EQ(request.headers.count("expect") + request.headers.count("content-length"), 0u);
    EXPECT_EQ(request.body, "");
  }
  EXPECT_EQ(server_.requests().at(0).path, "/store/version_config.json");
  EXPECT_EQ(paths, (std::set<std::string>{"GET /store/version_config.json", "GET /store/q/7/play_config.json",
                                          "GET /store/q/7/audio.mp3", "GET /store/q/7/animation.json",
                                          "GET /store/q/7/signature_forte.ahap"}));
  EXPECT_EQ(server_.requests().size(), 5u);
  EXPECT_EQ(takePrinted(), (Lines{kStarted, kDone}));
  EXPECT_TRUE(controller->didRemoteUpgradeFound());
  EXPECT_TRUE(controller->didRemoteUpgradeSuccessful());
  EXPECT_FALSE(controller->didAssetDownloadFailed());
  EXPECT_EQ(controller->halvoAssetsDirectoryPath(), staging().string());
  EXPECT_EQ(filesOf(active() / "quellaro"), setOf("7"));
  EXPECT_EQ(readFile(active() / "version_config.json"), configOf("7", "q/7"));
  EXPECT_FALSE(std::filesystem::exists(staging()));
  EXPECT_EQ(HalvoUtility::cueVersion("quellaro"), "7");
  EXPECT_EQ(HalvoUtility::lastUpgradeTime(), kNow);

  wall_.advance(1000);
  check(*controller);
  EXPECT_EQ(takePrinted(), (Lines{"QuellaroHalvo: quellaro cue version 7 is up to date\n"}));
  EXPECT_FALSE(controller->didRemoteUpgradeFound());
  EXPECT_TRUE(controller->didRemoteUpgradeSuccessful());
  EXPECT_EQ(server_.requests().size(), 5u);
  EXPECT_EQ(HalvoUtility::lastUpgradeTime(), kNow + 1000);
}

TEST_F(Upgrade, TheStoreIsAskedOnlyWhenMoreThanAWeekHasPassed) {
  publish("1", "q/1");
  HalvoUtility::setCueVersion("quellaro", "1");
  const auto controller = makeController();
  const struct {
    double elapsed;
    bool asks;
  } cases[] = {{0, false},          {kWeek - 1, false},  {kWeek, false}, {kWeek + 1, true},
               {kWeek + 0.5, true}, {1e6 * kWeek, true}, {-5, false}};
  for (const auto& c : cases) {
    HalvoUtility::setLastUpgradeTime(kNow - c.elapsed);
    const std::size_t before = server_.requests().size();
    check(*controller);
    EXPECT_EQ(server_.requests().size() - before, c.asks ? 1u : 0u) << c.elapsed;
    EXPECT_EQ(HalvoUtility::lastUpgradeTime(), kNow) << c.elapsed;
  }
}

TEST_F(Upgrade, AnAnswerThatListsNothingToInstallIsStoredAndStamped) {
  HalvoUtility::setCueVersion("quellaro", "5");
  const struct {
    std::string answer;
    std::vector<std::string> lines;
  } cases[] = {
      {"<html>", {"QuellaroHalvo: Failed to load: "}},
      {R"([{"sdk_versions": ["2.0.0"], "cues": {}}])", {"QuellaroHalvo: Failed to load: At [0].analytics: "}},
      {"[]", {}},
      {configOf("6", "q/6", "2.0"), {}},
      {configOf("6", "q/6", "2.0.0", "other"), {"QuellaroHalvo: quellaro cue is not present\n"}},
      {configOf("5", "q/6"), {"QuellaroHalvo: quellaro cue version 5 is up to date\n"}},
  };
  for (const auto& c : cases) {
    HalvoUtility::setLastUpgradeTime(0);
    answer("/version_config.json", c.answer);
    const auto controller = makeController();
    check(*controller);
    const Lines printed = takePrinted();
    ASSERT_EQ(printed.size(), c.lines.size()) << c.answer;
    for (std::size_t i = 0; i < printed.size(); ++i) EXPECT_THAT(printed[i], StartsWith(c.lines[i]));
    EXPECT_FALSE(controller->didRemoteUpgradeFound());
    EXPECT_EQ(readFile(active() / "version_config.json"), c.answer);
    EXPECT_EQ(HalvoUtility::lastUpgradeTime(), kNow) << c.answer;
  }
}

TEST_F(Upgrade, AnErrorPageCountsAsReceived) {
  installActive("1");
  answer("/version_config.json",
         [](auto&, auto& c) { c.send("HTTP/1.1 503 Unavailable\r\nContent-Length: 5\r\n\r\nlater"); });
  check(*makeController());
  EXPECT_EQ(readFile(active() / "version_config.json"), "later");
  EXPECT_THAT(takePrinted(), ElementsAre(StartsWith("QuellaroHalvo: Failed to load: ")));
}

TEST_F(Upgrade, WithoutAnAnswerTheCopyOnTheDeviceIsUsed) {
  HalvoUtility::setCueVersion("quellaro", "1");
  const std::string upToDate = "QuellaroHalvo: quellaro cue version 1 is up to date\n";
  const auto failed = [](const std::string& why) {
    return "QuellaroHalvo: version config download failed due to " + why;
  };

  // The bundle's, as long as there is no active root.
  answer("/version_config.json", [](auto&, auto&) {});
  check(*makeController());
  EXPECT_THAT(takePrinted(),
              ElementsAre(StartsWith(failed("Optional(Error Domain=NSURLErrorDomain Code=-1005 \"")), upToDate));
  EXPECT_EQ(HalvoUtility::lastUpgradeTime(), kNow);

  // An active root without a copy: the check ends with no time stamp, so that the next one asks again.
  HalvoUtility::setLastUpgradeTime(5);
  std::filesystem::create_directories(active());
  answer("/version_config.json", "");
  check(*makeController());
  EXPECT_EQ(takePrinted(), (Lines{failed("nil\n")}));
  EXPECT_EQ(HalvoUtility::lastUpgradeTime(), 5);

  // The same in between two questions.
  HalvoUtility::setLastUpgradeTime(kNow - 1);
  check(*makeController());
  EXPECT_EQ(takePrinted(), Lines{});
  EXPECT_EQ(HalvoUtility::lastUpgradeTime(), kNow - 1);

  // The copy of an earlier answer.
  writeFile(active() / "version_config.json", configOf("1", "q/1"));
  HalvoUtility::setLastUpgradeTime(5);
  check(*makeController());
  EXPECT_EQ(takePrinted(), (Lines{failed("nil\n"), upToDate}));
  EXPECT_EQ(HalvoUtility::lastUpgradeTime(), kNow);
}

TEST_F(Upgrade, AnAnswerThatCannotBeSavedIsNotUsed) {
  publish("7", "q/7");
  std::filesystem::create_directories(active() / "version_config.json" / "in the way");
  check(*makeController());
  EXPECT_EQ(takePrinted(), (Lines{"QuellaroHalvo: version config saving failed\n"}));
  EXPECT_EQ(HalvoUtility::lastUpgradeTime(), 0);

  std::filesystem::remove_all(active());
  writeFile(active(), "a file where the directory belongs");
  check(*makeController());
  EXPECT_EQ(takePrinted(), (Lines{"QuellaroHalvo: version config saving failed\n"}));
  EXPECT_EQ(readFile(bundle() / "version_config.json").find("q/7"), std::string::npos);
}

TEST_F(Upgrade, OneFileThatDoesNotArriveLeavesEverythingAsItWas) {
  installActive("1");
  const std::pair<const char*, ScriptedServer::Script> faults[] = {
      {"closed", [](auto&, auto&) {}},
      {"empty", [](auto&, auto& c) { c.answer(""); }},
      {"half", [](auto&, auto& c) { c.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf"); }},
      {"wrong gzip", [](auto&, auto& c) { c.answer("no gzip", "Content-Encoding: gzip\r\n"); }},
      {"a redirect into the file system",
       [](auto&, auto& c) { c.send("HTTP/1.1 302 Found\r\nLocation: file:///etc/passwd\r\n\r\n"); }},
      {"a file where nothing can be written", nullptr},
  };
  for (const auto& [what, fault] : faults) {
    for (const char* name : {"play_config.json", "signature_forte.ahap"}) {
      HalvoUtility::setLastUpgradeTime(0);
      publish("2", "q/2");
      if (fault) {
        answer(std::string("/q/2/") + name, fault);
      } else {
        std::filesystem::remove(staging() / name);
        std::filesystem::create_directories(staging() / name / "in the way");
      }
      const auto controller = makeController();
      check(*controller);
      EXPECT_EQ(takePrinted(), Lines{kStarted}) << what;
      EXPECT_TRUE(controller->didRemoteUpgradeFound() && controller->didAssetDownloadFailed()) << what;
      EXPECT_FALSE(controller->didRemoteUpgradeSuccessful()) << what;
      EXPECT_EQ(filesOf(active() / "quellaro"), setOf("1")) << what;
      EXPECT_EQ(HalvoUtility::cueVersion("quellaro"), "1") << what;
      EXPECT_EQ(readFile(staging() / "audio.mp3"), contentOf("2", "audio.mp3")) << what;
      std::filesystem::remove_all(staging() / name);
    }
  }
  // The next check works from the copy on the device and fetches all four again.
  publish("2", "q/2");
  const std::size_t before = server_.requests().size();
  const auto controller = makeController();
  check(*controller);
  EXPECT_EQ(server_.requests().size() - before, 4u);
  EXPECT_EQ(filesOf(active() / "quellaro"), setOf("2"));
  EXPECT_TRUE(controller->didRemoteUpgradeSuccessful());
}

TEST_F(Upgrade, AnAddressThatCannotBeUsedMakesNoCheckAndOneLineInAProcess) {
  HalvoUtility::setLastUpgradeTime(5);
  testing::internal::CaptureStderr();
  for (const char* base : {"", "17", "null", "[]", "\"\"", "\" \"", "\"http://a b\"", "\"http://caf\u00e9/\""}) {
    setBaseAddress(base);
    check(*makeController());
    EXPECT_EQ(takePrinted(), Lines{}) << base;
    EXPECT_EQ(HalvoUtility::lastUpgradeTime(), 5) << base;
  }
  const std::string said = testing::internal::GetCapturedStderr();
  EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;

  // A valid address of something else is asked, and answers with an error.
  for (const char* base : {"\"ftp://127.0.0.1\"", "\"file:///etc\"", "\"store\"", "\"http:\""}) {
    setBaseAddress(base);
    HalvoUtility::setLastUpgradeTime(5);
    HalvoUtility::setCueVersion("quellaro", "1");
    check(*makeController());
    EXPECT_THAT(takePrinted(), ElementsAre(HasSubstr("failed due to Optional(Error Domain=NSURLErrorDomain Code=-1002"),
                                           HasSubstr("is up to date")))
        << base;
  }
}

TEST_F(Upgrade, AFilePathOnlyEverFormsAnAddress) {
  for (const char* filepath : {"a b", "100%", "caf\u00e9"}) {
    HalvoUtility::setLastUpgradeTime(0);
    answer("/version_config.json", configOf("3", filepath));
    const std::size_t before = server_.requests().size();
    const auto controller = makeController();
    check(*controller);
    EXPECT_EQ(server_.requests().size() - before, 1u) << filepath;
    EXPECT_TRUE(controller->didAssetDownloadFailed()) << filepath;
  }
  takePrinted();
  publish("3", "../../q");
  HalvoUtility::setLastUpgradeTime(0);
  check(*makeController());
  EXPECT_EQ(filesOf(active() / "quellaro"), setOf("3"));
  EXPECT_EQ(server_.requests().back().path.substr(0, 14), "/store/../../q");
}

TEST_F(Upgrade, ACueWithoutADirectoryOfItsOwnTouchesNothing) {
  installActive("1");
  for (const std::string& cue : {std::string(), std::string("."), std::string(".."), std::string("a/b"),
                                 std::string("../halvo_assets_active/quellaro"), std::string("a\0b", 3)}) {
    HalvoUtility::setLastUpgradeTime(0);
    answer("/version_config.json", configOf("9", "q/9", "2.0.0", cue.c_str()));
    const auto controller = makeController(cue);
    check(*controller);
    controller->discardActiveCueAssets();
    EXPECT_FALSE(controller->didRemoteUpgradeFound()) << cue;
    EXPECT_EQ(HalvoUtility::cueVersion(cue), "0") << cue;
    EXPECT_EQ(filesOf(active() / "quellaro"), setOf("1")) << cue;
    EXPECT_FALSE(std::filesystem::exists(library() / "halvo_assets_temp")) << cue;
  }
}

TEST_F(Upgrade, DiscardedAssetsComeAgainWhateverTheirVersion) {
  installActive("1");
  publish("1", "q/1");
  const auto controller = makeController();
  controller->discardActiveCueAssets();
  EXPECT_FALSE(std::filesystem::exists(active() / "quellaro"));
  EXPECT_EQ(HalvoUtility::cueVersion("quellaro"), "");
  check(*controller);
  EXPECT_EQ(filesOf(active() / "quellaro"), setOf("1"));
  EXPECT_EQ(HalvoUtility::cueVersion("quellaro"), "1");
}

TEST_F(Upgrade, AControllerThatIsGoneChangesNothingMore) {
  publish("2", "q/2");
  makeController()->checkForUpgrade();
  driver_.settle();
  EXPECT_FALSE(std::filesystem::exists(active()));

  auto controller = makeController();
  controller->checkForUpgrade();
  while (takePrinted().empty()) MainQueue::shared().drain();
  controller.reset();
  driver_.settle();
  EXPECT_EQ(takePrinted(), Lines{});
  EXPECT_FALSE(std::filesystem::exists(active() / "quellaro"));
  EXPECT_EQ(HalvoUtility::cueVersion("quellaro"), "0");
}

TEST_F(Upgrade, ChecksThatOverlapNeverMixTheirFiles) {
  installActive("1");
  publish("2", "q/2");
  for (const char* name : kCueFiles)
    answer(std::string("/q/2/") + name, [name](auto&, auto& c) {
      c.pause(0.1);
      c.answer(contentOf("2", name));
    });
  const auto controller = makeController();
  controller->checkForUpgrade();
  while (takePrinted().empty()) MainQueue::shared().drain();

  // Meanwhile the store has moved on, and somebody prepares again.
  HalvoUtility::setLastUpgradeTime(0);
  publish("3", "q/3");
  check(*controller);
  EXPECT_EQ(filesOf(active() / "quellaro"), setOf("3"));
  EXPECT_EQ(HalvoUtility::cueVersion("quellaro"), "3");

  // Two checks for the same version: one of them installs it, and the other takes nothing away.
  HalvoUtility::setLastUpgradeTime(0);
  publish("4", "q/4");
  controller->checkForUpgrade();
  controller->checkForUpgrade();
  driver_.settle();
  EXPECT_EQ(filesOf(active() / "quellaro"), setOf("4"));
  EXPECT_EQ(HalvoUtility::cueVersion("quellaro"), "4");
}

}  // namespace
}  // namespace quellaro
