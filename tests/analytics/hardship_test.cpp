#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

#include "analytics_fixture.h"
#include "platform/foundation/storage/user_defaults.h"
#include "support/hardship/failing_changes.h"
#include "support/hardship/failing_memory.h"

namespace quellaro {
namespace {

// One Library after another, each with something that a play has to do besides.
struct Situation {
  const char* name;
  bool hasFailedRecord;
  bool isDue;
  const char* answer;
};
constexpr Situation kSituations[] = {
    {"counted", false, false, kAccepted},
    {"delivered", false, true, kAccepted},
    {"refused", false, true, kRefused},
    {"resent", true, false, kAccepted},
    {"not resent", true, false, kRefused},
    {"resent, then refused", true, true, kRefused},
    {"resent, then delivered", true, true, kAccepted},
};

class Hardship : public AnalyticsFixture {
 protected:
  // Plays before: 2, all of them on disk.
  void arrange(const Situation& situation) {
    setLibraryDirectory((library() / std::to_string(++libraries_)).string());
    wallClock_.set(kStart);
    play("old");
    wallClock_.advance(31 * kDay);
    if (situation.hasFailedRecord) {
      play("old");
      endpoint_.answer(kRefused);
    } else {
      std::filesystem::remove(place("mixpanel-analytics-data.json"));
      play("old");
      play("old");
    }
    delivered_ = 0;
    if (situation.isDue) wallClock_.advance(31 * kDay);
    NSUserDefaults::standardUserDefaults().synchronize();
  }
  std::filesystem::path place(const char* name) const { return library() / std::to_string(libraries_) / name; }
  // Counts what the requests carry that are accepted.
  void answerAll(std::array<std::string, 3> answers) {
    for (std::size_t i = 0; endpoint_.open() > 0; ++i) {
      if (answers.at(i) == kAccepted) delivered_ += playsSent(endpoint_.oldestBody());
      endpoint_.answer(std::move(answers[i]));
    }
  }
  void answerAll(const char* answer) { answerAll({answer, answer, answer}); }
  static long long playsSent(const std::string& body) {
    long long plays = 0;
    for (std::size_t at = body.find("\"total\":"); at != std::string::npos; at = body.find("\"total\":", at + 1))
      plays += std::atoll(body.c_str() + at + 8);
    return plays;
  }
  long long playsStored() const {
    return playsIn(place("mixpanel-analytics-data.json")) + playsIn(place("sync-failed-analytics-data.json")) +
           playsIn(place("mixpanel-analytics-data-next.json"));
  }
  void expectNothingLeftBehind() const {
    for (const auto& entry : std::filesystem::directory_iterator(library() / std::to_string(libraries_)))
      EXPECT_EQ(entry.path().string().find("unfinished"), std::string::npos) << entry.path();
    EXPECT_FALSE(std::filesystem::exists(place("mixpanel-analytics-data-next.json")));
    EXPECT_FALSE(std::filesystem::exists(place("sync-failed-analytics-data-next.json")));
  }

  int libraries_ = 0;
  long long delivered_ = 0;
};

// Every one when QUELLARO_SWEEP is set; otherwise some, others for each situation.
TEST_F(Hardship, WhicheverAllocationFailsLaterPlaysCountAndNothingCountsTwice) {
  const long stride = std::getenv("QUELLARO_SWEEP") != nullptr ? 1 : 11;
  long first = 0;
  for (const Situation& situation : kSituations)
    for (long n = first++;; n += stride) {
      SCOPED_TRACE(std::string(situation.name) + ", allocation " + std::to_string(n));
      arrange(situation);
      std::array<std::string, 3> answers{situation.answer, situation.answer, situation.answer};
      FailingAllocation failing(n);
      play("old");
      answerAll(std::move(answers));
      const bool hasFailed = failing.end();
      // What the failure has left undone comes with these.
      for (int i = 0; i < 2; ++i) {
        play("old");
        answerAll(kAccepted);
      }
      const long long plays = delivered_ + playsStored();
      EXPECT_GE(plays, hasFailed ? 4 : 5) << "the play that met it may be missing, and nothing else";
      EXPECT_LE(plays, 5);
      expectNothingLeftBehind();
      ASSERT_FALSE(HasFailure());
      if (hasFailed) continue;
      EXPECT_GT(n, 50);
      break;
    }
}

TEST_F(Hardship, KilledAtWhicheverChangeOfTheFileSystemNothingIsLostOrCountsTwice) {
  MixpanelAnalyticsServiceProvider::loadDistinctID();
  // What the process that is killed has seen accepted.
  auto* const accepted = static_cast<long long*>(
      mmap(nullptr, sizeof(long long), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  for (const Situation& situation : kSituations)
    for (long n = 0;; ++n) {
      SCOPED_TRACE(std::string(situation.name) + ", change " + std::to_string(n));
      ASSERT_LT(n, 100);
      arrange(situation);
      *accepted = 0;
      const pid_t child = fork();
      if (child == 0) {
        const FailingChanges failing(n, true);
        play("old");
        while (endpoint_.open() > 0) {
          if (situation.answer == std::string(kAccepted)) *accepted += playsSent(endpoint_.oldestBody());
          endpoint_.answer(situation.answer);
        }
        _exit(0);
      }
      int status = 0;
      ASSERT_EQ(waitpid(child, &status, 0), child);
      const bool wasKilled = WIFSIGNALED(status);
      play("old");
      answerAll(kAccepted);
      const long long plays = *accepted + delivered_ + playsStored();
      EXPECT_GE(plays, wasKilled ? 3 : 4) << "the play that was being counted may be missing, and nothing else";
      // What was accepted when the process was killed, before it could be noted, is sent again.
      EXPECT_LE(plays, 4 + (wasKilled ? *accepted : 0));
      expectNothingLeftBehind();
      ASSERT_FALSE(HasFailure());
      if (wasKilled) continue;
      EXPECT_GT(n, 2);
      break;
    }
  munmap(accepted, sizeof(long long));
}

}  // namespace
}  // namespace quellaro
