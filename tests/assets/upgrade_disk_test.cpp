#include <gtest/gtest.h>
#include <sys/mount.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include "assets/upgrade_fixture.h"

namespace quellaro {
namespace {

// A Library on a small file system of its own, where the machine lets the test have one.
class UpgradeOnAPoorDisk : public UpgradeFixture {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(library());
    if (mount("tmpfs", library().c_str(), "tmpfs", 0, "size=64k") != 0)
      GTEST_SKIP() << "no file system of its own: " << std::strerror(errno);
    isMounted_ = true;
    installActive("1");
  }
  void TearDown() override {
    driver_.settle();
    if (isMounted_) umount2(library().c_str(), MNT_DETACH);
  }
  void expectTheOldCueAndNoUpgrade(const QLUpgradeController& controller) {
    EXPECT_FALSE(controller.didRemoteUpgradeSuccessful());
    EXPECT_EQ(filesOf(active() / "quellaro"), setOf("1"));
    EXPECT_EQ(HalvoUtility::cueVersion("quellaro"), "1");
  }

 private:
  bool isMounted_ = false;
};

TEST_F(UpgradeOnAPoorDisk, AFullDiskKeepsTheOldCueAndLeavesNoHalfWrittenFile) {
  publish("2", "q/2");
  answer("/q/2/animation.json", std::string(100000, 'x'));
  const auto controller = makeController();
  check(*controller);
  EXPECT_TRUE(controller->didRemoteUpgradeFound() && controller->didAssetDownloadFailed());
  expectTheOldCueAndNoUpgrade(*controller);
  for (const auto& [name, content] : filesOf(staging())) EXPECT_EQ(content, contentOf("2", name));

  // The configuration itself does not fit: the copy of before is used.
  answer("/version_config.json", std::string(100000, ' ') + configOf("2", "q/2"));
  HalvoUtility::setLastUpgradeTime(0);
  takePrinted();
  check(*controller);
  EXPECT_EQ(takePrinted().at(0), "QuellaroHalvo: version config saving failed\n");
  EXPECT_EQ(readFile(active() / "version_config.json"), configOf("2", "q/2"));
  expectTheOldCueAndNoUpgrade(*controller);
}

TEST_F(UpgradeOnAPoorDisk, AReadOnlyLibraryKeepsTheOldCue) {
  publish("2", "q/2");
  ASSERT_EQ(mount(nullptr, library().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, "size=64k"), 0);
  const auto controller = makeController();
  check(*controller);
  expectTheOldCueAndNoUpgrade(*controller);
  const auto printed = takePrinted();
  EXPECT_NE(std::find(printed.begin(), printed.end(), "QuellaroHalvo: version config saving failed\n"), printed.end());
  EXPECT_FALSE(std::filesystem::exists(staging()));

  // As soon as it can be written again, the cue arrives.
  ASSERT_EQ(mount(nullptr, library().c_str(), nullptr, MS_REMOUNT, "size=64k"), 0);
  HalvoUtility::setLastUpgradeTime(0);
  check(*controller);
  EXPECT_EQ(filesOf(active() / "quellaro"), setOf("2"));
}

}  // namespace
}  // namespace quellaro
