#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <string>

#include "assets/upgrade_fixture.h"
#include "platform/foundation/application.h"

namespace {

// How many more changes of the file system succeed on this thread. The one at 0 is cut short, and none comes after it:
// what is on the disk then is what a process leaves that was killed there.
thread_local long changesLeft = LONG_MAX;

bool isCut() {
  errno = EIO;
  if (changesLeft <= 0) return true;
  --changesLeft;
  return false;
}

}  // namespace

// These stand before the C library's.
extern "C" {
#pragma GCC visibility push(default)
int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const unsigned mode = (flags & O_CREAT) != 0 ? va_arg(arguments, unsigned) : 0;
  va_end(arguments);
  if ((flags & O_CREAT) != 0 && isCut()) return -1;
  return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}
ssize_t write(int descriptor, const void* bytes, size_t count) {
  struct stat status {};
  if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) || !isCut())
    return syscall(SYS_write, descriptor, bytes, count);
  if (changesLeft-- == 0) syscall(SYS_write, descriptor, bytes, count / 2);
  errno = EIO;
  return -1;
}
int rename(const char* from, const char* to) noexcept {
  return isCut() ? -1 : static_cast<int>(syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}
int renameat2(int fromDirectory, const char* from, int toDirectory, const char* to, unsigned flags) noexcept {
  return isCut() ? -1 : static_cast<int>(syscall(SYS_renameat2, fromDirectory, from, toDirectory, to, flags));
}
int unlinkat(int directory, const char* path, int flags) noexcept {
  return isCut() ? -1 : static_cast<int>(syscall(SYS_unlinkat, directory, path, flags));
}
int mkdir(const char* path, mode_t mode) noexcept {
  return isCut() ? -1 : static_cast<int>(syscall(SYS_mkdirat, AT_FDCWD, path, mode));
}
#pragma GCC visibility pop
}

namespace quellaro {
namespace {

class UpgradeKilled : public UpgradeFixture {
 protected:
  // Whether it came to its end.
  bool checkAsFarAs(long changes) {
    changesLeft = changes;
    check(*makeController());
    // What was not stored yet is lost with the process.
    setLibraryDirectory(bundle().string());
    HalvoUtility::lastUpgradeTime();
    setLibraryDirectory(library().string());
    return std::exchange(changesLeft, LONG_MAX) > 0;
  }

  // What a cue is played from: the new set, the old one, or the bundle; a set that is not whole fails to prepare, and
  // is then discarded.
  void expectSomethingToPlay() {
    const auto files = filesOf(active() / "quellaro");
    if (!std::filesystem::exists(active() / "quellaro") || files == setOf("1") || files == setOf("2")) return;
    for (const auto& [name, content] : files) EXPECT_EQ(content, contentOf("1", name));
    makeController()->discardActiveCueAssets();
    EXPECT_EQ(HalvoFileManager::assetsDirectoryPath("quellaro"), bundle().string());
  }
};

TEST_F(UpgradeKilled, AtEveryChangeOfTheFileSystemThereIsACueToPlayAndTheNextCheckMendsTheRest) {
  publish("2", "q/2");
  for (int changes = 0;; ++changes) {
    SCOPED_TRACE(changes);
    ASSERT_LT(changes, 200);
    std::filesystem::remove_all(library());
    installActive("1");
    driver_.settle();
    const bool hasEnded = checkAsFarAs(changes);
    if (!hasEnded) {
      expectSomethingToPlay();
      wall_.set(secondsSince1970() + 2 * kWeek);
      check(*makeController());
    }
    EXPECT_EQ(filesOf(active() / "quellaro"), setOf("2"));
    EXPECT_EQ(HalvoUtility::cueVersion("quellaro"), "2");
    EXPECT_TRUE(filesOf(staging()).empty());
    takePrinted();
    if (!hasEnded) continue;
    // Directories, four files and the configuration with three changes each, the removal, the move, the stored values.
    EXPECT_GT(changes, 25);
    break;
  }
}

}  // namespace
}  // namespace quellaro
