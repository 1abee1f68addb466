#include "store/store_lock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <chrono>
#include <thread>
#include <utility>

#include "options.h"
#include "store/durable_files.h"

namespace halvo {

namespace {

using namespace quellaro;

constexpr std::chrono::milliseconds kRetry{50};

}  // namespace

Result<StoreLock> StoreLock::take(const std::string& store, std::int64_t patienceSeconds) {
  FileDescriptor directory(open(store.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!directory) return errorAt(store, errno);
  const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(patienceSeconds);
  for (bool hasSaidSo = false; flock(directory.get(), LOCK_EX | LOCK_NB) != 0;) {
    if (errno == EINTR) continue;
    if (errno != EWOULDBLOCK) return errorAt(store, errno);
    if (std::chrono::steady_clock::now() >= limit)
      return NSError{"halvo", EWOULDBLOCK,
                     store + ": somebody else is changing this store, for more than " +
                         std::to_string(patienceSeconds) + " seconds"};
    if (!std::exchange(hasSaidSo, true))
      tell(store + ": somebody else is changing this store; waiting at most " + std::to_string(patienceSeconds) +
           " seconds");
    std::this_thread::sleep_for(kRetry);
  }
  return StoreLock(std::move(directory));
}

}  // namespace halvo
