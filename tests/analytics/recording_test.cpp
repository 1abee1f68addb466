#include <gtest/gtest.h>

#include <thread>

#include "analytics_fixture.h"
#include "platform/foundation/memory/limits.h"

namespace quellaro {
namespace {

class Recording : public AnalyticsFixture {
 protected:
  // The next play is due from here on.
  void endPeriod() { wallClock_.advance(31 * kDay); }
  // A failed record ("old") and one of the current period ("new").
  void leaveFailedRecord() {
    play("old");
    endPeriod();
    play("new");
    endpoint_.answer(kRefused);
  }
};

TEST_F(Recording, FirstAndLaterPlays) {
  HapticsAnalytics haptics{.isEnabled = true, .isSupported = false, .hapticsStatus = ComponentStatus::Played};
  manager_->recordPlay("shop", "1", QLHalvoType::soundOnly, 907, haptics, 906, true);
  wallClock_.advance(60);
  play("other");
  play("third");
  haptics = {.isEnabled = false, .isSupported = true, .hapticsStatus = ComponentStatus::Ready};
  manager_->recordPlay("shop", "1", QLHalvoType::soundOnly, 907, haptics, 800, true);
  EXPECT_EQ(current(), "other/shop:1 third/shop:1 shop/shop:2");
  EXPECT_EQ(failed(), "absent");
  EXPECT_EQ(endpoint_.sent, 0);
  const auto events = decodeAggregatedCueEvents(readFile(currentPath()));
  const MixpanelAggregatedCueEventProperties& record = events->back().properties;
  EXPECT_EQ(events->back().event, "shop_played");
  EXPECT_EQ(record.startDate, NSDate::withTimeIntervalSince1970(kStart));
  EXPECT_EQ(record.endDate, NSDate::withTimeIntervalSince1970(kStart + 60));
  EXPECT_EQ(record.sdkVersion, "2.0.0");
  EXPECT_EQ(record.cueVersion, "1");
  EXPECT_TRUE(record.hapticsEnabled && !record.hapticsSupported) << "as at the first play";
  EXPECT_EQ(record.hapticsPlayCount, 1);
  EXPECT_EQ(record.mutedPlayCount, 2);
  EXPECT_EQ(record.soundFailureCount, 1);
  EXPECT_EQ(record.soundOnlyCount, 1);
}

TEST_F(Recording, IdentityIsTheEventAndTheMerchantsHash) {
  for (const auto& [name, id] : {std::pair("A", "a"), {"Renamed", "a"}, {"A", "b"}}) {
    manager_->merchant = QLHalvoMerchant::make(name, "US", std::nullopt, {"1"}, std::string(id));
    play();
  }
  EXPECT_EQ(current(), "shop/a:2 shop/b:1");
}

TEST_F(Recording, FailedRecordsGoAheadOfOlderOnesAndAreSentBeforeEveryPlay) {
  play("old");
  play("older");
  endPeriod();
  play("new");
  EXPECT_EQ(endpoint_.sent, 1);
  EXPECT_EQ(current(), "old/shop:1 older/shop:1") << "nothing changes before the answer";
  endpoint_.answer(kRefused);
  EXPECT_EQ(current(), "new/shop:1");
  EXPECT_EQ(failed(), "old/shop:1 older/shop:1");

  play("new");
  EXPECT_EQ(endpoint_.sent, 2);
  EXPECT_EQ(current(), "new/shop:1") << "counted when the attempt has been answered";
  endpoint_.answer(std::nullopt);
  EXPECT_EQ(current(), "new/shop:2");

  endPeriod();
  play("newest");
  endpoint_.answer(kRefused);  // of the failed records
  endpoint_.answer(kRefused);  // of the period
  EXPECT_EQ(failed(), "new/shop:2 old/shop:1 older/shop:1");
  EXPECT_EQ(current(), "newest/shop:1");

  play("newest");
  endpoint_.answer(kAccepted);
  EXPECT_EQ(readFile(failedPath()), "[]");
  EXPECT_EQ(current(), "newest/shop:2");
  play("newest");
  EXPECT_EQ(endpoint_.open(), 0U);
}

TEST_F(Recording, WhatIsNotRecorded) {
  leaveFailedRecord();
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
  EXPECT_EQ(endpoint_.sent, 1) << "nothing is even sent again";

  manager_->environment = QLHalvoEnvironment::primary;
  using Text = std::optional<std::string>;
  for (const auto& [cue, version] : {std::pair<Text, Text>({}, "1"), {"", "1"}, {"new", {}}, {"new", ""}}) {
    play(*manager_, cue, version);
    ASSERT_EQ(endpoint_.open(), 1U) << "the failed record is sent all the same";
    endpoint_.answer(kRefused);
  }
  manager_->merchant.reset();
  play("new");
  endpoint_.answer(kRefused);
  EXPECT_EQ(current(), "new/shop:1");
  EXPECT_EQ(failed(), "old/shop:1");
}

TEST_F(Recording, WithoutAUsableAddressNothingWaits) {
  leaveFailedRecord();
  for (const std::optional<std::string>& url : {std::optional<std::string>(), {""}, {"not an address"}}) {
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
  EXPECT_EQ(endpoint_.sent, 1);
}

TEST_F(Recording, PlaysDuringAnUploadCountForTheNextPeriod) {
  play("old");
  endPeriod();
  const auto second = newManager();
  play("a");
  play(*second, "b", "1");
  second->merchant = merchantNamed("Late");
  play(*second, "a", "1");
  play("a");
  EXPECT_EQ(current(), "old/shop:1");
  EXPECT_EQ(next(), "b/shop:1 a/late:1 a/shop:2") << "on disk before the answer is there";
  play("a", "2");
  endPeriod();
  play("a", "2");
  endpoint_.answer(kRefused);
  EXPECT_EQ(current(), "b/shop:1 a/late:1 a/shop:2 a/shop:1 a/shop:1")
      << "nothing is added to another version or period";
  EXPECT_EQ(next(), "absent");
  EXPECT_EQ(failed(), "old/shop:1");
  EXPECT_EQ(endpoint_.sent, 1);
}

TEST_F(Recording, PlaysThatWaitForFailedRecordsAreCountedAtTheAnswer) {
  leaveFailedRecord();
  for (const char* version : {"2", "2", "1"}) play("new", version);
  EXPECT_EQ(endpoint_.open(), 1U);
  endpoint_.answer(kRefused);
  EXPECT_EQ(current(), "new/shop:1") << "the version is over";
  EXPECT_EQ(next(), "new/shop:2 new/shop:1");
  play("last");
  EXPECT_EQ(endpoint_.open(), 1U);
  endpoint_.answer(kAccepted);
  EXPECT_EQ(current(), "new/shop:2 new/shop:1");
  EXPECT_EQ(endpoint_.open(), 1U) << "another attempt for the failed records, before the last play";
  endpoint_.answer(kAccepted);
  EXPECT_EQ(current(), "new/shop:2 new/shop:1 last/shop:1");
  EXPECT_EQ(readFile(failedPath()), "[]");
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
  play("cue0");
  EXPECT_EQ(current(), "cue1/shop:100 cue0/shop:101");
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
  for (const std::string& content : {std::string(), record.substr(0, record.size() / 2)}) {
    writeFile(currentPath(), content);
    writeFile(failedPath(), content);
    play();
    EXPECT_EQ(current(), "shop/shop:1");
    EXPECT_EQ(readFile(failedPath()), content) << "nobody had a reason to write it";
  }
  writeFile(currentPath(), record + std::string(limits::kUsageFileBytes, ' '));
  play();
  EXPECT_EQ(current(), "shop/shop:1");
  EXPECT_EQ(endpoint_.sent, 0);
}

TEST_F(Recording, WhatCannotBeReplacedIsLeftAlone) {
  std::filesystem::create_directories(currentPath());
  play();
  EXPECT_TRUE(std::filesystem::is_directory(currentPath()));
  std::filesystem::remove(currentPath());
  play();
  std::filesystem::create_directories(failedPath());
  endPeriod();
  play("new");
  endpoint_.answer(kRefused);
  EXPECT_EQ(current(), "shop/shop:1") << "records that could not be moved stay where they were";
}

TEST_F(Recording, AnyTextReadsBack) {
  const std::string odd = "q\"\\\n\x01\x7f 😀 é";
  manager_->merchant = QLHalvoMerchant::make(odd, odd, odd, {odd, ""}, odd);
  for (const std::string& text : {odd, std::string("bad\xff")}) {
    play(text, text);
    play(text, text);
  }
  EXPECT_EQ(current(), odd + "/" + odd + ":2 bad\xEF\xBF\xBD/" + odd + ":2") << "repaired alike each time";
  EXPECT_EQ(endpoint_.sent, 0);
}

}  // namespace
}  // namespace quellaro
