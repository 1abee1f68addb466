#include "support/hardship/failing_changes.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdarg>
#include <utility>

namespace {

// The change at 0 is cut short.
thread_local long changesLeft = LONG_MAX;
bool kills = false;
bool canExchange = true;

bool isCut() {
  if (changesLeft-- > 0) return false;
  if (kills) raise(SIGKILL);
  errno = EIO;
  return true;
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
  const bool isFile = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
  if (!isFile || changesLeft-- > 0) return syscall(SYS_write, descriptor, bytes, count);
  // Half of it.
  if (changesLeft == -1) syscall(SYS_write, descriptor, bytes, count / 2);
  if (kills) raise(SIGKILL);
  errno = EIO;
  return -1;
}
int rename(const char* from, const char* to) noexcept {
  return isCut() ? -1 : static_cast<int>(syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}
int renameat2(int fromDirectory, const char* from, int toDirectory, const char* to, unsigned flags) noexcept {
  if ((flags & RENAME_EXCHANGE) != 0 && !canExchange) {
    errno = EINVAL;
    return -1;
  }
  return isCut() ? -1 : static_cast<int>(syscall(SYS_renameat2, fromDirectory, from, toDirectory, to, flags));
}
int unlinkat(int directory, const char* path, int flags) noexcept {
  return isCut() ? -1 : static_cast<int>(syscall(SYS_unlinkat, directory, path, flags));
}
int unlink(const char* path) noexcept { return unlinkat(AT_FDCWD, path, 0); }
int mkdir(const char* path, mode_t mode) noexcept {
  return isCut() ? -1 : static_cast<int>(syscall(SYS_mkdirat, AT_FDCWD, path, mode));
}
#pragma GCC visibility pop
}

namespace quellaro {

FailingChanges::FailingChanges(long succeeding, bool kill) {
  changesLeft = succeeding;
  kills = kill;
}

bool FailingChanges::end() { return std::exchange(changesLeft, LONG_MAX) < 0; }

void setCanExchange(bool can) { canExchange = can; }

}  // namespace quellaro
