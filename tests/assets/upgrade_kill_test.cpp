#include <gtest/gtest.h>

#include <string>

#include "assets/upgrade_fixture.h"
#include "platform/foundation/application.h"
#include "support/hardship/failing_changes.h"

namespace quellaro {
namespace {

class UpgradeKilled : public UpgradeFixture {
 protected:
  ~UpgradeKilled() override { setCanExchange(true); }
  // Whether it came to its end.
  bool checkAsFarAs(long changes) {
    FailingChanges failing(changes);
    check(*makeController());
    // What was not stored yet is lost with the process.
    setLibraryDirectory(bundle().string());
    HalvoUtility::lastUpgradeTime();
    setLibraryDirectory(library().string());
    return !failing.end();
  }
  // Of everything below the Library.
  std::string leftovers() const {
    std::string names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(library()))
      for (const char* part : {"unfinished", "-aside", "-discarded", "-2"})
        if (entry.path().filename().string().find(part) != std::string::npos) names += entry.path().string() + " ";
    return names;
  }
};

TEST_F(UpgradeKilled, AtEveryChangeOfTheFileSystemThereIsACueToPlayAndTheNextCheckMendsTheRest) {
  publish("2", "q/2");
  for (const bool exchanges : {true, false})
    for (int changes = 0;; ++changes) {
      SCOPED_TRACE(std::to_string(changes) + (exchanges ? "" : ", two steps"));
      ASSERT_LT(changes, 200);
      setCanExchange(exchanges);
      std::filesystem::remove_all(library());
      installActive("1");
      // As a download leaves it whose process was killed.
      writeFile(staging().parent_path() / "quellaro-2" / "audio.mp3", "part");
      driver_.settle();
      const bool hasEnded = checkAsFarAs(changes);
      // The old set, the new one, or the bundle's: never a part of one.
      const auto files = filesOf(active() / "quellaro");
      EXPECT_TRUE(!std::filesystem::exists(active() / "quellaro") || files == setOf("1") || files == setOf("2"));
      EXPECT_TRUE(!exchanges || !files.empty()) << "at no time is there none";
      if (!hasEnded) {
        wall_.set(secondsSince1970() + 2 * kWeek);
        check(*makeController());
      }
      EXPECT_EQ(filesOf(active() / "quellaro"), setOf("2"));
      EXPECT_EQ(HalvoUtility::cueVersion("quellaro"), "2");
      EXPECT_TRUE(filesOf(staging()).empty());
      EXPECT_EQ(leftovers(), "");
      takePrinted();
      ASSERT_FALSE(HasFailure());
      if (!hasEnded) continue;
      // Directories, four files and the configuration with three changes each, the exchange, the removal, the stored
      // values.
      EXPECT_GT(changes, 25);
      break;
    }
}

TEST_F(UpgradeKilled, DiscardingTakesASetAwayAsAWhole) {
  for (int changes = 0;; ++changes) {
    SCOPED_TRACE(changes);
    std::filesystem::remove_all(library());
    installActive("1");
    bool hasFailed = false;
    {
      FailingChanges failing(changes);
      makeController()->discardActiveCueAssets();
      hasFailed = failing.end();
    }
    const auto files = filesOf(active() / "quellaro");
    EXPECT_TRUE(files.empty() || files == setOf("1"));
    makeController()->discardActiveCueAssets();
    EXPECT_FALSE(std::filesystem::exists(active() / "quellaro"));
    EXPECT_EQ(leftovers(), "");
    takePrinted();
    ASSERT_FALSE(HasFailure());
    if (!hasFailed) break;
  }
}

}  // namespace
}  // namespace quellaro
