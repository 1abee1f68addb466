#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <new>
#include <set>
#include <string>
#include <vector>

#include "assets/upgrade_fixture.h"
#include "support/hardship/failing_memory.h"

namespace quellaro {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using Lines = std::vector<std::string>;

class Upgrade : public UpgradeFixture {};

// By how much the most memory that this process holds from now on is above what it holds, in bytes.
class MemoryGrowth {
 public:
  MemoryGrowth() {
    writeFile("/proc/self/clear_refs", "5");
    before_ = most();
  }
  std::size_t bytes() const { return std::max(most(), before_) - before_; }

 private:
  static std::size_t most() {
    const std::string status = readFile("/proc/self/status");
    return std::stoul(status.substr(status.find("VmHWM:") + 6)) * 1024;
  }
  std::size_t before_ = 0;
};

TEST_F(Upgrade, FourBodiesWithoutEndTakeLittleMemoryAndReplaceNothing) {
  publish("7", "q/7");
  installActive("1");
  const std::string flood(1 << 20, 'x');
  for (const char* name : kCueFiles)
    answer(std::string("/q/7/") + name, [flood](const auto&, const auto& connection) {
      connection.send("HTTP/1.1 200 OK\r\n\r\n");
      while (connection.send(flood)) continue;
    });
  const auto controller = makeController();
  const MemoryGrowth growth;
  check(*controller);
#if defined(QUELLARO_SANITIZED)
  static_cast<void>(growth);
#else
  EXPECT_LT(growth.bytes(), std::size_t{64} << 20);
#endif
  EXPECT_EQ(filesOf(active() / "quellaro"), setOf("1"));
  EXPECT_TRUE(filesOf(staging()).empty());
  answer("/version_config.json",
         [&](const auto&, const auto& connection) { connection.answer("[" + std::string(1 << 20, ' ') + "]"); });
  wall_.advance(2 * kWeek);
  check(*controller);
  EXPECT_THAT(takePrinted(), testing::Contains(HasSubstr("The resource exceeds the maximum size.")));
}

TEST_F(Upgrade, InstallsWhatTheStoreListsAndThenKeepsQuietForAWeek) {
  publish("7", "q/7");
  installActive("1");
  writeFile(staging() / "audio.mp3", "of an earlier attempt");
  writeFile(staging() / "audio.mp3.4711-0.halvo-unfinished", "of a process that was killed");
  const auto controller = makeController();
  controller->checkForUpgrade();
  EXPECT_FALSE(controller->didRemoteUpgradeFound());
  driver_.settle();

  std::set<std::string> paths;
  for (const auto& request : server_.requests()) {
    paths.insert(request.method + " " + request.path);
    EXPECT_EQ(request.headers.at("content-type"), "application/json");
  }
  EXPECT_EQ(server_.requests().at(0).path, "/store/version_config.json");
  EXPECT_EQ(paths, (std::set<std::string>{"GET /store/version_config.json", "GET /store/q/7/play_config.json",
                                          "GET /store/q/7/audio.mp3", "GET /store/q/7/animation.json",
                                          "GET /store/q/7/signature_forte.ahap"}));
  EXPECT_EQ(server_.requests().size(), 5u);
  EXPECT_EQ(takePrinted(), (Lines{"QuellaroHalvo: New halvo update found download started\n",
                                  "QuellaroHalvo: New halvo upgraded successfully\n"}));
  EXPECT_TRUE(controller->didRemoteUpgradeFound() && controller->didRemoteUpgradeSuccessful());
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
  const std::pair<double, bool> rows[] = {{0, false}, {kWeek, false}, {kWeek + 0.5, true}, {-5, false}};
  for (const auto& [elapsed, asks] : rows) {
    HalvoUtility::setLastUpgradeTime(kNow - elapsed);
    const std::size_t before = server_.requests().size();
    check(*makeController());
    EXPECT_EQ(server_.requests().size() - before, asks ? 1u : 0u) << elapsed;
    EXPECT_EQ(HalvoUtility::lastUpgradeTime(), kNow) << elapsed;
  }
}

TEST_F(Upgrade, AnAnswerThatListsNothingToInstallIsStoredAndStamped) {
  HalvoUtility::setCueVersion("quellaro", "5");
  const std::pair<std::string, std::string> rows[] = {
      {"<html>", "QuellaroHalvo: Failed to load: "},
      {R"([{"sdk_versions": ["2.0.0"], "cues": {}}])", "QuellaroHalvo: Failed to load: At [0].analytics: "},
      {configOf("6", "q/6", "2.0"), ""},
      {configOf("6", "q/6", "2.0.0", "other"), "QuellaroHalvo: quellaro cue is not present\n"},
      {configOf("5", "q/6"), "QuellaroHalvo: quellaro cue version 5 is up to date\n"},
  };
  for (const auto& [body, line] : rows) {
    HalvoUtility::setLastUpgradeTime(0);
    // An error page counts as received.
    answer("/version_config.json", [text = body](auto&, auto& c) {
      c.send("HTTP/1.1 503 Unavailable\r\nContent-Length: " + std::to_string(text.size()) + "\r\n\r\n" + text);
    });
    const auto controller = makeController();
    check(*controller);
    const Lines printed = takePrinted();
    EXPECT_EQ(printed.size(), line.empty() ? 0u : 1u) << body;
    EXPECT_THAT(printed.empty() ? "" : printed[0], StartsWith(line));
    EXPECT_FALSE(controller->didRemoteUpgradeFound());
    EXPECT_EQ(readFile(active() / "version_config.json"), body);
    EXPECT_EQ(HalvoUtility::lastUpgradeTime(), kNow) << body;
  }
}

TEST_F(Upgrade, WithoutAnAnswerTheCopyOnTheDeviceIsUsed) {
  HalvoUtility::setCueVersion("quellaro", "1");
  const std::string upToDate = "QuellaroHalvo: quellaro cue version 1 is up to date\n";
  const std::string failed = "QuellaroHalvo: version config download failed due to ";

  // The bundle's, as long as there is no active root.
  answer("/version_config.json", [](auto&, auto&) {});
  check(*makeController());
  EXPECT_THAT(takePrinted(),
              ElementsAre(StartsWith(failed + "Optional(Error Domain=NSURLErrorDomain Code=-1005 \""), upToDate));
  EXPECT_EQ(HalvoUtility::lastUpgradeTime(), kNow);

  // An active root without a copy: the check ends with no time stamp, so that the next one asks again.
  std::filesystem::create_directories(active());
  answer("/version_config.json", "");
  const std::pair<double, Lines> rows[] = {{5, {failed + "nil\n"}}, {kNow - 1, {}}};
  for (const auto& [stamp, lines] : rows) {
    HalvoUtility::setLastUpgradeTime(stamp);
    check(*makeController());
    EXPECT_EQ(takePrinted(), lines);
    EXPECT_EQ(HalvoUtility::lastUpgradeTime(), stamp);
  }

  // The copy of an earlier answer.
  writeFile(active() / "version_config.json", configOf("1", "q/1"));
  HalvoUtility::setLastUpgradeTime(5);
  check(*makeController());
  EXPECT_EQ(takePrinted(), (Lines{failed + "nil\n", upToDate}));
  EXPECT_EQ(HalvoUtility::lastUpgradeTime(), kNow);
}

TEST_F(Upgrade, AnAnswerThatCannotBeSavedIsNotUsedAndNeverComesIntoTheBundle) {
  publish("7", "q/7");
  writeFile(library(), "a file where the Library belongs");
  check(*makeController());
  EXPECT_THAT(takePrinted(), testing::Contains("QuellaroHalvo: version config saving failed\n"));
  EXPECT_EQ(readFile(bundle() / "version_config.json").find("q/7"), std::string::npos);
  // So that the time of the check, which could not be written either, is written before the directory goes.
  std::filesystem::remove(library());
}

TEST_F(Upgrade, OneFileThatDoesNotArriveLeavesEverythingAsItWas) {
  installActive("1");
  const std::filesystem::path lastFile = staging() / "signature_forte.ahap";
  const struct {
    const char* what;
    const char* filepath;
    ScriptedServer::Script last;
  } faults[] = {
      {"closed", "q/2", [](auto&, auto&) {}},
      {"empty", "q/2", [](auto&, auto& c) { c.answer(""); }},
      {"no address", "100%", [](auto&, auto& c) { c.answer("fine"); }},
      {"nothing can be written", "q/2",
       [&](auto&, auto& c) {
         std::filesystem::create_directories(lastFile / "in the way");
         c.answer("fine");
       }},
  };
  for (const auto& [what, filepath, last] : faults) {
    HalvoUtility::setLastUpgradeTime(0);
    publish("2", filepath);
    answer("/q/2/signature_forte.ahap", last);
    const auto controller = makeController();
    check(*controller);
    EXPECT_EQ(takePrinted(), Lines{"QuellaroHalvo: New halvo update found download started\n"}) << what;
    EXPECT_TRUE(controller->didRemoteUpgradeFound() && controller->didAssetDownloadFailed()) << what;
    EXPECT_FALSE(controller->didRemoteUpgradeSuccessful()) << what;
    EXPECT_EQ(filesOf(active() / "quellaro"), setOf("1")) << what;
    EXPECT_EQ(HalvoUtility::cueVersion("quellaro"), "1") << what;
    EXPECT_EQ(readFile(staging() / "audio.mp3"), contentOf("2", "audio.mp3")) << what;
  }
  // The next check works from the copy on the device and fetches all four again.
  std::filesystem::remove_all(lastFile);
  answer("/q/2/signature_forte.ahap", contentOf("2", "signature_forte.ahap"));
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
  for (const char* base : {"", "17", "\"\"", "\"http://a b\""}) {
    setBaseAddress(base);
    check(*makeController());
    EXPECT_EQ(takePrinted(), Lines{}) << base;
    EXPECT_EQ(HalvoUtility::lastUpgradeTime(), 5) << base;
  }
  const std::string said = testing::internal::GetCapturedStderr();
  EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;

  // A valid address of something else is asked, and answers with an error.
  setBaseAddress("\"ftp://127.0.0.1\"");
  check(*makeController());
  EXPECT_THAT(takePrinted().at(0), HasSubstr("failed due to Optional(Error Domain=NSURLErrorDomain Code=-1002"));
}

TEST_F(Upgrade, ACueWithoutADirectoryOfItsOwnTouchesNothing) {
  installActive("1");
  for (const std::string cue : {"", "..", "../halvo_assets_active/quellaro"}) {
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

TEST_F(Upgrade, WhatHasArrivedWholeIsInstalledWhateverElseLiesThere) {
  publish("", "q/0");
  writeFile(staging() / "other.txt", "kept");
  writeFile(staging() / "audio.mp3.77-0.halvo-unfinished", "of a write that was killed");
  const auto controller = makeController();
  controller->checkForUpgrade();
  while (takePrinted().empty()) MainQueue::shared().drain();
  // As when the cue is discarded meanwhile.
  HalvoUtility::setCueVersion("quellaro", "");
  driver_.settle();
  auto expected = setOf("");
  expected["other.txt"] = "kept";
  EXPECT_EQ(filesOf(active() / "quellaro"), expected);
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
  const auto answerLate = [this](const std::string& version, const std::string& name, double seconds) {
    answer("/q/" + version + "/" + name, [=](auto&, auto& c) {
      c.pause(seconds);
      c.answer(contentOf(version, name));
    });
  };
  for (const char* name : kCueFiles) answerLate("2", name, 0.1);
  const auto controller = makeController();
  controller->checkForUpgrade();
  while (takePrinted().empty()) MainQueue::shared().drain();

  // Meanwhile the store has moved on, and somebody prepares again.
  HalvoUtility::setLastUpgradeTime(0);
  publish("3", "q/3");
  answerLate("3", "audio.mp3", 0.3);
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

// Every one when QUELLARO_SWEEP is set; otherwise some.
TEST_F(Upgrade, WhicheverAllocationFailsThereIsASetToPlayAndTheNextCheckMendsTheRest) {
  publish("2", "q/2");
  const long stride = std::getenv("QUELLARO_SWEEP") != nullptr ? 1 : 17;
  for (long n = 0;; n += stride) {
    SCOPED_TRACE(n);
    std::filesystem::remove_all(library());
    installActive("1");
    driver_.settle();
    const auto controller = makeController();
    FailingAllocation failing(n);
    controller->checkForUpgrade();
    try {
      driver_.settle();
    } catch (const std::bad_alloc&) {
      // The queue's own, before it has begun anything.
      driver_.settle();
    }
    const bool hasFailed = failing.end();
    const auto files = filesOf(active() / "quellaro");
    EXPECT_TRUE(files == setOf("1") || files == setOf("2"));
    wall_.set(secondsSince1970() + 2 * kWeek);
    check(*makeController());
    EXPECT_EQ(filesOf(active() / "quellaro"), setOf("2"));
    EXPECT_EQ(HalvoUtility::cueVersion("quellaro"), "2");
    takePrinted();
    ASSERT_FALSE(HasFailure());
    if (hasFailed) continue;
    EXPECT_GT(n, 100);
    break;
  }
}

}  // namespace
}  // namespace quellaro
