#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <utility>

#include "platform/foundation/storage/file_descriptor.h"

namespace quellaro {

// A lock that every process respects which takes it by the same file; threads of one process exclude each other too.
// The file stays, empty: whoever removed it would leave two processes with a lock each. The lock ends with the object,
// or with the process, however that ends.
class FileLock {
 public:
  enum class Kind { Shared, Exclusive };
  // For who waits: far longer than any holder works with the files, and as long as a host's thread may be held up. A
  // process that keeps a lock for longer is stopped or hangs, and nobody is to hang with it.
  static constexpr std::chrono::milliseconds kPatience{1000};

  // Nothing when somebody else holds it all that time. Where there can be no such lock at all (a read-only disk, a file
  // system without locks, no file at the path) everybody gets one, which keeps nobody out.
  static std::optional<FileLock> take(const std::string& path, Kind kind = Kind::Exclusive,
                                      std::chrono::milliseconds patience = kPatience);
  // The same, at once or not at all, of a directory that exists. It stays with the directory wherever that is moved.
  static std::optional<FileLock> takeDirectory(const std::string& path);

  // Keeps nobody out.
  FileLock() = default;
  FileLock(FileLock&&) noexcept = default;
  FileLock& operator=(FileLock&& other) noexcept {
    std::swap(file_, other.file_);
    std::swap(owner_, other.owner_);
    return *this;
  }
  ~FileLock();

 private:
  static std::optional<FileLock> take(FileDescriptor file, Kind kind, std::chrono::milliseconds patience);

  FileDescriptor file_;
  pid_t owner_ = 0;
};

}  // namespace quellaro
