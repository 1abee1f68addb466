#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <map>
#include <random>
#include <thread>

#include "analytics_fixture.h"
#include "platform/foundation/json_reader.h"

namespace quellaro {
namespace {

// What must be conserved of every cue and merchant: plays, successes, failures, muted plays, plays with haptics.
using Counts = std::array<std::int64_t, 5>;
using Totals = std::map<std::string, Counts>;

void add(Totals& totals, const std::string& key, const Counts& counts) {
  Counts& sum = totals[key];
  for (std::size_t i = 0; i < counts.size(); ++i) sum[i] += counts[i];
}

class Model : public AnalyticsFixture {
 protected:
  void act() {
    const unsigned choice = pick(100);
    if (choice < 70) {
      report();
    } else if (choice < 85) {
      wallClock_.advance(kDay * static_cast<double>(pick(12)));
    } else if (choice < 88) {
      wallClock_.advance(-kDay * static_cast<double>(pick(40)));
    } else if (choice < 90) {
      version_ = std::to_string(pick(3));
    } else if (choice < 92) {
      restart();
    }
    // Most requests are answered soon, so that some plays wait and most do not.
    while (endpoint_.open() > 0 && pick(10) < 7) answer();
  }

  // Plays that are still waiting are in neither place.
  Totals deliveredAndStored() const {
    Totals sum = delivered_;
    for (const auto& path : {currentPath(), failedPath()}) {
      if (!std::filesystem::exists(path)) continue;
      const auto events = decodeAggregatedCueEvents(readFile(path));
      EXPECT_TRUE(events);
      for (const MixpanelAggregatedCueEvent& event : *events) {
        const MixpanelAggregatedCueEventProperties& p = event.properties;
        add(sum, p.cueName + "/" + p.merchant->merchantId,
            {p.totalCount, p.successCount, p.failureCount, p.mutedPlayCount, p.hapticsPlayCount});
      }
    }
    return sum;
  }

  void report() {
    const std::string cue(1, static_cast<char>('a' + pick(3)));
    const std::string merchant(1, static_cast<char>('x' + pick(2)));
    const bool fails = pick(4) == 0;
    const bool muted = pick(3) == 0;
    const bool haptics = pick(3) == 0;
    manager_->merchant = merchantNamed(merchant);
    // Counted for the merchant of the moment when its turn comes, so that only one is possible while plays wait.
    if (endpoint_.open() > 0) manager_->merchant = merchantNamed(waitingMerchant_);
    waitingMerchant_ = manager_->merchant->merchantId;
    const HapticsAnalytics analytics{
        .isEnabled = haptics,
        .isSupported = haptics,
        .hapticsStatus = haptics ? ComponentStatus::Played : ComponentStatus::Not_Required};
    manager_->recordPlay(cue, version_, QLHalvoType::soundOnly, 800, analytics, fails ? 906 : 800, muted);
    add(reported_, cue + "/" + waitingMerchant_, {1, fails ? 0 : 1, fails ? 1 : 0, muted ? 1 : 0, haptics ? 1 : 0});
    ++plays_;
  }

  void answer() {
    const std::string body = endpoint_.sent[endpoint_.sent.size() - endpoint_.open()].body;
    const unsigned kind = pick(4);
    if (kind < 2) deliver(body);
    endpoint_.answer(kind < 2    ? std::optional<std::string>(kAccepted)
                     : kind == 2 ? std::optional<std::string>(kRefused)
                                 : std::nullopt);
    kind < 2 ? ++accepted_ : ++refused_;
  }

  void deliver(const std::string& body) {
    const auto events = JSONDocument::parse(body.substr(5));
    ASSERT_TRUE(events);
    for (const JSONValue& event : events->root().elements()) {
      const JSONValue p = event.member("properties").value();
      const auto count = [&](const char* key) { return p.member(key)->wholeNumber().value(); };
      add(delivered_,
          std::string(*p.member("cueName")->string()) + "/" + std::string(*p.member("merchantId")->string()),
          {count("total"), count("success"), count("failure"), count("mutedPlay"), count("hapticsPlay")});
    }
  }

  // The process ends and starts anew with the same files. What waited in memory was never counted; a request that was
  // under way never arrived.
  void restart() {
    const bool waiting = endpoint_.open() > 0;
    endpoint_.forgetOpen();
    manager_ = newManager();
    // A process that starts has no memory of uploads: another path to the same files gives it none.
    const std::filesystem::path next = bundle().parent_path() / ("library" + std::to_string(++restarts_));
    std::filesystem::copy(libraryPath_, next, std::filesystem::copy_options::recursive);
    libraryPath_ = next;
    setLibraryDirectory(next.string());
    if (waiting) {
      for (const auto& [key, counts] : deliveredAndStored())
        for (std::size_t i = 0; i < counts.size(); ++i) EXPECT_LE(counts[i], reported_[key][i]) << key;
      reported_ = deliveredAndStored();
    }
  }

  std::filesystem::path currentPath() const { return libraryPath_ / "mixpanel-analytics-data.json"; }
  std::filesystem::path failedPath() const { return libraryPath_ / "sync-failed-analytics-data.json"; }
  unsigned pick(unsigned count) { return static_cast<unsigned>(random_() % count); }

  // Fixed, so that every run is the same.
  std::mt19937 random_{20240701};
  std::filesystem::path libraryPath_ = library();
  std::string version_ = "1";
  std::string waitingMerchant_ = "x";
  Totals reported_;
  Totals delivered_;
  int plays_ = 0, accepted_ = 0, refused_ = 0, restarts_ = 0;
};

TEST_F(Model, NothingIsLostAndNothingCountsTwice) {
  manager_->merchant = merchantNamed("x");
  for (int i = 0; i < 4000; ++i) {
    act();
    if (endpoint_.open() == 0 && i % 10 == 0) {
      ASSERT_EQ(deliveredAndStored(), reported_) << "after action " << i;
    }
  }
  while (endpoint_.open() > 0) answer();
  EXPECT_EQ(deliveredAndStored(), reported_);
  EXPECT_EQ(endpoint_.mostAtOnce, 1U) << "no record is in two requests";
  EXPECT_GT(plays_, 2500);
  EXPECT_GT(accepted_, 100);
  EXPECT_GT(refused_, 100);
  EXPECT_GT(restarts_, 30);
}

class KilledProcess : public AnalyticsFixture {};

// Records plays, ends periods and fails uploads for as long as it lives.
[[noreturn]] void recordForEver(MixpanelAnalyticsManager& manager, FakeEndpoint& endpoint, ManualClock& clock) {
  for (unsigned i = 0;; ++i) {
    manager.recordPlay("cue" + std::to_string(i % 40), "1", QLHalvoType::soundOnly, 800, {}, 800, false);
    while (endpoint.open() > 0) endpoint.answer(i % 3 == 0 ? kAccepted : kRefused);
    if (i % 50 == 49) clock.advance(31 * 86400.0);
  }
}

TEST_F(KilledProcess, LeavesReadableFiles) {
  std::size_t stored = 0;
  for (int round = 0; round < 40; ++round) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) recordForEver(*manager_, endpoint_, wallClock_);
    std::this_thread::sleep_for(std::chrono::microseconds(3000 + 317 * round));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << "it ended by itself: " << status;
    for (const auto& path : {currentPath(), failedPath()}) {
      if (!std::filesystem::exists(path)) continue;
      const auto events = decodeAggregatedCueEvents(readFile(path));
      ASSERT_TRUE(events) << path << ": " << events.error().description();
      stored += events->size();
    }
  }
  EXPECT_GT(stored, 0U) << "the children were killed before they wrote anything";
}

}  // namespace
}  // namespace quellaro
