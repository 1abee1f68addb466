#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdlib>
#include <string>

#include "assets/upgrade_fixture.h"
#include "platform/foundation/application.h"
#include "support/child_process.h"

namespace {

// On the child's main thread, how many more changes of the file system it may live to make; elsewhere any number.
thread_local long changesLeft = -1;

void die() { kill(getpid(), SIGKILL); }

void countChange() {
  if (changesLeft >= 0 && changesLeft-- == 0) die();
}

}  // namespace

// These stand before the C library's, so that the process can be killed at each of its changes of the file system.
extern "C" {
#pragma GCC visibility push(default)
int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const unsigned mode = (flags & O_CREAT) != 0 ? va_arg(arguments, unsigned) : 0;
  va_end(arguments);
  if ((flags & O_CREAT) != 0) countChange();
  return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}
ssize_t write(int descriptor, const void* bytes, size_t count) {
  struct stat status {};
  if (changesLeft >= 0 && fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && changesLeft-- == 0) {
    syscall(SYS_write, descriptor, bytes, count / 2);
    die();
  }
  return syscall(SYS_write, descriptor, bytes, count);
}
int rename(const char* from, const char* to) noexcept {
  countChange();
  return static_cast<int>(syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}
int renameat2(int fromDirectory, const char* from, int toDirectory, const char* to, unsigned flags) noexcept {
  countChange();
  return static_cast<int>(syscall(SYS_renameat2, fromDirectory, from, toDirectory, to, flags));
}
int unlinkat(int directory, const char* path, int flags) noexcept {
  countChange();
  return static_cast<int>(syscall(SYS_unlinkat, directory, path, flags));
}
int mkdir(const char* path, mode_t mode) noexcept {
  countChange();
  return static_cast<int>(syscall(SYS_mkdirat, AT_FDCWD, path, mode));
}
#pragma GCC visibility pop
}

namespace quellaro {
namespace {

constexpr const char* kBundleVariable = "QUELLARO_TEST_BUNDLE";
constexpr const char* kLibraryVariable = "QUELLARO_TEST_LIBRARY";
constexpr const char* kChangesVariable = "QUELLARO_TEST_CHANGES";

// Only for the test below, which starts this program again.
TEST(UpgradeInAChild, DISABLED_RunsOneCheckAsFarAsItMay) {
  ASSERT_NE(getenv(kChangesVariable), nullptr);
  NSBundle::setLibraryPath(getenv(kBundleVariable));
  setLibraryDirectory(getenv(kLibraryVariable));
  MainQueueDriver driver;
  const auto controller = QLUpgradeController::make();
  controller->setPreparingHalvoCue("quellaro");
  changesLeft = std::atol(getenv(kChangesVariable));
  controller->checkForUpgrade();
  driver.settle();
  changesLeft = -1;
  _exit(controller->didRemoteUpgradeSuccessful() ? 0 : 1);
}

class UpgradeKilled : public UpgradeFixture {
 protected:
  // The child's exit status; -1 when it was killed.
  int runChild(int changes) const {
    setenv(kBundleVariable, bundle().c_str(), 1);
    setenv(kLibraryVariable, library().c_str(), 1);
    setenv(kChangesVariable, std::to_string(changes).c_str(), 1);
    return ChildProcess({"/proc/self/exe", "--gtest_filter=UpgradeInAChild.*", "--gtest_also_run_disabled_tests"},
                        bundle().parent_path() / "output")
        .exitStatus();
  }

  // What a cue is played from: the new set, the old one, or the bundle; a set that is not whole fails to prepare, and
  // is then discarded.
  void expectSomethingToPlay(int changes) {
    const auto files = filesOf(active() / "quellaro");
    if (!std::filesystem::exists(active() / "quellaro") || files == setOf("1") || files == setOf("2")) return;
    for (const auto& [name, content] : files) EXPECT_EQ(content, contentOf("1", name)) << changes;
    makeController()->discardActiveCueAssets();
    EXPECT_EQ(HalvoFileManager::assetsDirectoryPath("quellaro"), bundle().string());
  }
};

TEST_F(UpgradeKilled, AtEveryChangeOfTheFileSystemThereIsACueToPlayAndTheNextCheckMendsTheRest) {
  publish("2", "q/2");
  int changes = 0;
  for (;; ++changes) {
    ASSERT_LT(changes, 200);
    std::filesystem::remove_all(library());
    installActive("1");
    const int status = runChild(changes);
    ASSERT_LE(status, 0);
    if (status == 0) break;
    expectSomethingToPlay(changes);
    wall_.set(secondsSince1970() + 2 * kWeek);
    check(*makeController());
    EXPECT_EQ(filesOf(active() / "quellaro"), setOf("2")) << changes;
    EXPECT_EQ(HalvoUtility::cueVersion("quellaro"), "2") << changes;
    EXPECT_FALSE(std::filesystem::exists(staging())) << changes;
    takePrinted();
  }
  EXPECT_EQ(filesOf(active() / "quellaro"), setOf("2"));
  // Directories, four files and the configuration with three changes each, the removal, the move, the stored values.
  EXPECT_GT(changes, 25);
}

}  // namespace
}  // namespace quellaro
