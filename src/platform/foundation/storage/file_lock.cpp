#include "platform/foundation/storage/file_lock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <thread>
#include <utility>

namespace quellaro {

namespace {

constexpr std::chrono::milliseconds kRetry{2};

}  // namespace

std::optional<FileLock> FileLock::take(const std::string& path, Kind kind, std::chrono::milliseconds patience) {
  // A link is not followed: nothing is made elsewhere.
  constexpr int kFlags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  return take(FileDescriptor(open(path.c_str(), kFlags, 0600)), kind, patience);
}

std::optional<FileLock> FileLock::takeDirectory(const std::string& path) {
  return take(FileDescriptor(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW)), Kind::Exclusive, {});
}

std::optional<FileLock> FileLock::take(FileDescriptor file, Kind kind, std::chrono::milliseconds patience) {
  FileLock lock;
  if (!file) return lock;
  const auto limit = std::chrono::steady_clock::now() + patience;
  while (flock(file.get(), (kind == Kind::Shared ? LOCK_SH : LOCK_EX) | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) return lock;
    if (std::chrono::steady_clock::now() >= limit) return std::nullopt;
    std::this_thread::sleep_for(kRetry);
  }
  lock.file_ = std::move(file);
  lock.owner_ = getpid();
  return lock;
}

FileLock::~FileLock() {
  // A child that the host forks meanwhile has the descriptor too. Closing it here alone would leave the lock with the
  // child; a child that ends must not take it from here.
  if (file_ && owner_ == getpid()) flock(file_.get(), LOCK_UN);
}

}  // namespace quellaro
