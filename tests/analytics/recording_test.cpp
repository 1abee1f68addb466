#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <atomic>
#include <csignal>
#include <thread>

#include "analytics_fixture.h"
#include "platform/foundation/limits.h"

namespace quellaro {
namespace {

class Recording : public AnalyticsFixture {
 protected:
  // The next play is due from here on.
  void endPeriod() { wallClock_.advance(31 * kDay); }
  // A file with one failed record, and an empty current one.
  void leaveFailedRecord() {
    play("old");
    endPeriod();
    play("new");
    endpoint_.answer(kRefused);
    ASSERT_EQ(failed(), "old/shop:1");
    ASSERT_EQ(current(), "new/shop:1");
  }
};

TEST_F(Recording, FirstAndLaterPlays) {
  play();
  const auto first = decodeAggregatedCueEvents(readFile(currentPath()));
  ASSERT_TRUE(first);
  wallClock_.advance(60);
  play("other");
  play();
  EXPECT_EQ(current(), "other/shop:1 shop/shop:2");
  EXPECT_EQ(failed(), "absent");
  const auto events = decodeAggregatedCueEvents(readFile(currentPath()));
  const MixpanelAggregatedCueEventProperties& record = events->back().properties;
  EXPECT_EQ(events->back().event, "shop_played");
  EXPECT_EQ(record.startDate, first->front().properties.startDate);
  EXPECT_EQ(record.endDate, NSDate::withTimeIntervalSince1970(kStart + 60));
  EXPECT_EQ(record.sdkVersion, "2.0.0");
  EXPECT_EQ(record.cueVersion, "1");
  EXPECT_TRUE(endpoint_.sent.empty());
}

TEST_F(Recording, IdentityIsTheEventAndTheMerchantsHash) {
  const auto make = [](const char* name, const char* country, std::optional<std::string> city, const char* id) {
    return QLHalvoMerchant::make(name, country, city, {"1"}, std::string(id));
  };
  for (const auto& merchant : {make("A", "US", std::nullopt, "a"), make("Renamed", "US", std::nullopt, "a"),
                               make("A", "DE", std::nullopt, "a"), make("A", "US", "", "a"), make("A", "US", "X", "a"),
                               make("A", "US", std::nullopt, "b")}) {
    manager_->merchant = merchant;
    play();
  }
  EXPECT_EQ(current(), "shop/a:2 shop/a:1 shop/a:1 shop/a:1 shop/b:1");
}

TEST_F(Recording, HapticsFlagsAreThoseOfTheFirstPlay) {
  HapticsAnalytics haptics{.isEnabled = true, .isSupported = false, .hapticsStatus = ComponentStatus::Played};
  manager_->recordPlay("shop", "1", QLHalvoType::soundOnly, 907, haptics, 906, true);
  haptics.isEnabled = false;
  haptics.isSupported = true;
  manager_->recordPlay("shop", "1", QLHalvoType::soundOnly, 907, haptics, 800, true);
  const auto events = decodeAggregatedCueEvents(readFile(currentPath()));
  const MixpanelAggregatedCueEventProperties& record = events->front().properties;
  EXPECT_TRUE(record.hapticsEnabled);
  EXPECT_FALSE(record.hapticsSupported);
  EXPECT_EQ(record.hapticsPlayCount, 2);
  EXPECT_EQ(record.mutedPlayCount, 2);
  EXPECT_EQ(record.soundFailureCount, 1);
  EXPECT_EQ(record.soundOnlyCount, 1);
}

TEST_F(Recording, APeriodEndsWithAnUpload) {
  play("old");
  play("older");
  endPeriod();
  play("new");
  EXPECT_EQ(endpoint_.sent.size(), 1U);
  EXPECT_EQ(current(), "old/shop:1 older/shop:1") << "nothing changes before the answer";
  endpoint_.answer(kAccepted);
  EXPECT_EQ(current(), "new/shop:1");
  EXPECT_EQ(failed(), "absent");
}

TEST_F(Recording, FailedRecordsGoAheadOfOlderOnesAndAreSentBeforeEveryPlay) {
  leaveFailedRecord();
  play("new");
  EXPECT_EQ(endpoint_.sent.size(), 2U);
  EXPECT_EQ(current(), "new/shop:1") << "counted when the attempt has been answered";
  endpoint_.answer(std::nullopt);
  EXPECT_EQ(current(), "new/shop:2");
  EXPECT_EQ(failed(), "old/shop:1");

  endPeriod();
  play("newest");
  endpoint_.answer(kRefused);  // of the failed record
  endpoint_.answer(kRefused);  // of the period
  EXPECT_EQ(failed(), "new/shop:2 old/shop:1");
  EXPECT_EQ(current(), "newest/shop:1");

  play("newest");
  endpoint_.answer(kAccepted);
  EXPECT_EQ(readFile(failedPath()), "[]");
  EXPECT_EQ(current(), "newest/shop:2");
  play("newest");
  EXPECT_EQ(endpoint_.open(), 0U);
  EXPECT_EQ(current(), "newest/shop:3");
}

TEST_F(Recording, WhatIsNotRecorded) {
  leaveFailedRecord();
  const std::string before = current();
  const auto settings = *manager_->config;
  manager_->config->enabled = false;
  play("new");
  manager_->config->enabled.reset();
  play("new");
  manager_->config.reset();
  play("new");
  manager_->config = settings;
  manager_->environment.reset();
  play("new");
  EXPECT_EQ(endpoint_.sent.size(), 1U) << "nothing is even sent again";

  manager_->environment = QLHalvoEnvironment::primary;
  const std::optional<std::string> nothing;
  for (const auto& [cue, version] : std::vector<std::pair<std::optional<std::string>, std::optional<std::string>>>{
           {nothing, "1"}, {"", "1"}, {"new", nothing}, {"new", ""}}) {
    play(*manager_, cue, version);
    ASSERT_EQ(endpoint_.open(), 1U) << "the failed record is sent all the same";
    endpoint_.answer(kRefused);
  }
  manager_->merchant.reset();
  play("new");
  endpoint_.answer(kRefused);
  EXPECT_EQ(current(), before);
  EXPECT_EQ(failed(), "old/shop:1");
}

TEST_F(Recording, WithoutAUsableAddressNothingWaits) {
  leaveFailedRecord();
  for (const std::optional<std::string>& url :
       {std::optional<std::string>(), std::optional<std::string>(""), std::optional<std::string>("not an address")}) {
    manager_->config->url = url;
    play("new");
    EXPECT_EQ(current(), "new/shop:1");
    EXPECT_EQ(failed(), "old/shop:1");
  }
  std::filesystem::remove(failedPath());
  play("new");
  EXPECT_EQ(current(), "new/shop:2") << "no upload stands in the way of this one";
  endPeriod();
  play("new");
  play("other");
  EXPECT_EQ(current(), "new/shop:2");
  EXPECT_EQ(failed(), "absent");
  EXPECT_EQ(endpoint_.sent.size(), 1U);
  manager_->config->url = "http://127.0.0.1/";
  play("other");
  endpoint_.answer(kAccepted);
  EXPECT_EQ(current(), "other/shop:1");
}

TEST_F(Recording, PlaysDuringAnUploadWaitInOrder) {
  play("old");
  endPeriod();
  const auto second = newManager();
  play("a");
  play(*second, "b", "1");
  second->merchant = merchantNamed("Late");
  play(*second, "a", "1");
  play("c");
  EXPECT_EQ(current(), "old/shop:1");
  EXPECT_EQ(endpoint_.sent.size(), 1U);
  endpoint_.answer(kRefused);
  EXPECT_EQ(current(), "a/shop:1 b/late:1 a/late:1 c/shop:1") << "for the merchant of the moment when they are counted";
  EXPECT_EQ(failed(), "old/shop:1");
  EXPECT_EQ(endpoint_.sent.size(), 1U) << "the upload they waited for was their attempt";
}

TEST_F(Recording, AWaitingPlayMayNeedAnUploadItself) {
  leaveFailedRecord();
  play("new", "2");  // sends the failed record, then the period of the other version
  play("new", "3");  // then the period of version 2
  play("last", "1");
  endpoint_.answer(kRefused);
  EXPECT_EQ(current(), "new/shop:1");
  endpoint_.answer(kAccepted);
  EXPECT_EQ(current(), "new/shop:1");
  EXPECT_EQ(endpoint_.open(), 1U);
  endpoint_.answer(kAccepted);
  EXPECT_EQ(current(), "new/shop:1 last/shop:1");
  EXPECT_EQ(failed(), "old/shop:1");
  EXPECT_EQ(endpoint_.mostAtOnce, 1U);
}

TEST_F(Recording, APendingPlayKeepsItsManager) {
  leaveFailedRecord();
  std::weak_ptr<MixpanelAnalyticsManager> weak = manager_;
  play("new");
  manager_.reset();
  EXPECT_FALSE(weak.expired());
  endpoint_.answer(kAccepted);
  EXPECT_TRUE(weak.expired());
  EXPECT_EQ(current(), "new/shop:2");
}

TEST_F(Recording, ManagersOnManyThreadsLoseNothing) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([manager = i < 2 ? manager_ : newManager(), i] {
      for (int n = 0; n < 50; ++n) play(*manager, "cue" + std::to_string(i % 2), "1");
    });
  for (std::thread& thread : threads) thread.join();
  const auto events = decodeAggregatedCueEvents(readFile(currentPath()));
  ASSERT_TRUE(events);
  ASSERT_EQ(events->size(), 2U);
  for (const MixpanelAggregatedCueEvent& event : *events) EXPECT_EQ(event.properties.totalCount, 100);
}

TEST_F(Recording, TheQueueIsNamedAfterTheHost) {
  EXPECT_EQ(manager_->serialAccessQueue->label(), "shopapp.serialQ");
  EXPECT_EQ(manager_->serialAccessQueue->qualityOfService(), QualityOfService::Background);
  setApplicationIdentifier(std::nullopt);
  EXPECT_EQ(newManager()->serialAccessQueue->label(), ".serialQ");
}

TEST_F(Recording, UnreadableFilesReadAsEmpty) {
  play();
  const std::string record = readFile(currentPath());
  const std::string contents[] = {"",   "null", "{}",   record.substr(0, record.size() / 2), record + record,
                                  "\0", "[[",   "\xff", R"([{"event":"shop_played"}])"};
  for (const std::string& content : contents) {
    writeFile(currentPath(), content);
    writeFile(failedPath(), content);
    play();
    EXPECT_EQ(current(), "shop/shop:1") << content;
    EXPECT_EQ(readFile(failedPath()), content) << "nobody had a reason to write it";
  }
  EXPECT_TRUE(endpoint_.sent.empty());

  std::filesystem::resize_file(currentPath(), limits::kUsageFileBytes + 1);
  std::filesystem::resize_file(failedPath(), limits::kUsageFileBytes + 1);
  play();
  EXPECT_EQ(current(), "shop/shop:1");
}

TEST_F(Recording, WhatCannotBeReplacedIsLeftAlone) {
  std::filesystem::create_directories(currentPath());
  play();
  EXPECT_TRUE(std::filesystem::is_directory(currentPath()));
  std::filesystem::remove(currentPath());
  ASSERT_EQ(mkfifo(currentPath().c_str(), 0600), 0);
  play();  // a pipe would make a reader wait for ever
  EXPECT_EQ(current(), "shop/shop:1");
  chmod(currentPath().c_str(), 0400);
  play();
  EXPECT_EQ(current(), "shop/shop:2");

  std::filesystem::create_directories(failedPath());
  endPeriod();
  play();
  endpoint_.answer(kRefused);
  EXPECT_EQ(current(), "shop/shop:2") << "records that could not be moved stay where they were";
}

TEST_F(Recording, AFullDiskLeavesTheFilesAsTheyWere) {
  play();
  const std::string before = readFile(currentPath());
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit full{before.size() / 2, limit.rlim_max};
  setrlimit(RLIMIT_FSIZE, &full);
  play("other");
  endPeriod();
  play("other");
  endpoint_.answer(kRefused);
  setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(readFile(currentPath()), before);
  EXPECT_EQ(failed(), "absent");
  for (const auto& entry : std::filesystem::directory_iterator(library()))
    EXPECT_NE(entry.path().extension(), ".tmp") << entry.path();
}

TEST_F(Recording, AnyTextReadsBack) {
  const std::string odd = "q\"\\\n\x01\x7f 😀 é";
  manager_->merchant = QLHalvoMerchant::make(odd, odd, odd, {odd, ""}, odd);
  play(odd, odd);
  play("bad\xff", "1");
  const auto events = decodeAggregatedCueEvents(readFile(currentPath()));
  ASSERT_TRUE(events) << events.error().description();
  EXPECT_EQ((*events)[0].event, odd + "_played");
  EXPECT_EQ((*events)[0].properties.merchant->city, odd);
  EXPECT_EQ((*events)[0].properties.merchant->merchantCategoryCodes.front(), odd);
  EXPECT_EQ((*events)[1].properties.cueName, "bad\xEF\xBF\xBD");
  play("bad\xff", "1");
  EXPECT_EQ(decodeAggregatedCueEvents(readFile(currentPath()))->size(), 2U) << "repaired alike each time";
}

TEST_F(Recording, WithoutALibraryNothingHappens) {
  setLibraryDirectory(std::nullopt);
  const std::string home = getenv("HOME") ? getenv("HOME") : "";
  const char* data = getenv("XDG_DATA_HOME");
  const std::optional<std::string> dataHome = data ? std::optional<std::string>(data) : std::nullopt;
  unsetenv("HOME");
  unsetenv("XDG_DATA_HOME");
  play();
  EXPECT_TRUE(endpoint_.sent.empty());
  setenv("HOME", home.c_str(), 1);
  if (dataHome) setenv("XDG_DATA_HOME", dataHome->c_str(), 1);
}

}  // namespace
}  // namespace quellaro
