#include "platform/foundation/storage/file_manager.h"

#include <dirent.h>
#include <fcntl.h>
#include <ftw.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <system_error>

#include "platform/foundation/memory/large_memory.h"
#include "platform/foundation/storage/file_descriptor.h"

namespace quellaro {

namespace fs = std::filesystem;

namespace {

// Room that parsers read beyond the end of a text.
constexpr std::size_t kPadding = 64;

// A path with a NUL would name another file once the system sees it.
bool isUsable(const std::string& path) { return !path.empty() && path.find('\0') == std::string::npos; }

std::optional<NSError> errorOf(const std::error_code& code) {
  if (!code) return std::nullopt;
  return posixError(code.value());
}

// While a directory is removed.
constexpr int kOpenDirectories = 16;

// What the standard library offers for directories ends the process when memory has run out.
struct CloseDirectory {
  void operator()(DIR* directory) const { closedir(directory); }
};

// Nobody else's files end like this.
constexpr std::string_view kUnfinishedEnding = ".halvo-unfinished";

// The file that a write begins, beside its target, so that the rename stays within one file system. It is locked as
// long as it is being written, which tells it from what a killed process has left, and goes when the write fails.
class UnfinishedFile {
 public:
  explicit UnfinishedFile(const std::string& target) : target_(target) {
    for (int attempt = 0; attempt < kAttempts && collides(); ++attempt) continue;
  }
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;
  ~UnfinishedFile() {
    if (descriptor_) unlink(name_.c_str());
  }

  explicit operator bool() const { return static_cast<bool>(descriptor_); }
  int descriptor() const { return descriptor_.get(); }
  bool becomeTarget() {
    if (rename(name_.c_str(), target_.c_str()) != 0) return false;
    descriptor_ = FileDescriptor();
    return true;
  }

 private:
  static constexpr int kAttempts = 100;

  // Whether another name has to be tried: another process may have the same id where it lives, or take the file for
  // left behind before it is locked.
  bool collides() {
    static std::atomic<unsigned> count{0};
    name_ = target_ + "." + std::to_string(getpid()) + "-" + std::to_string(count++) + std::string(kUnfinishedEnding);
    // What is stored is nobody else's.
    FileDescriptor file(open(name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!file) return errno == EEXIST;
    struct stat status {};
    if (flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return true;
    if (fstat(file.get(), &status) == 0 && status.st_nlink == 0) return true;
    descriptor_ = std::move(file);
    return false;
  }

  const std::string& target_;
  std::string name_;
  FileDescriptor descriptor_;
};

// As many bytes as there are, `size` at most; why there are no more in `error`.
std::size_t readAll(int file, char* into, std::size_t size, int& error) {
  std::size_t filled = 0;
  while (filled < size) {
    const ssize_t got = read(file, into + filled, size - filled);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) error = errno;
    if (got <= 0) break;
    filled += static_cast<std::size_t>(got);
  }
  return filled;
}

}  // namespace

bool FileManager::fileExistsAtPath(const std::string& path) {
  struct stat status {};
  return isUsable(path) && stat(path.c_str(), &status) == 0;
}

bool FileManager::directoryExistsAtPath(const std::string& path) {
  struct stat status {};
  return isUsable(path) && stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::optional<std::string> FileManager::contentsAtPath(const std::string& path, std::size_t bound) {
  Result<std::string> contents = readAtPath(path, bound);
  if (!contents) return std::nullopt;
  return std::move(*contents);
}

Result<std::string> FileManager::readAtPath(const std::string& path, std::size_t bound) {
  if (!isUsable(path)) return posixError(EINVAL);
  // Without O_NONBLOCK, opening a pipe waits for a writer.
  const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file) return posixError(errno);
  struct stat status {};
  if (fstat(file.get(), &status) != 0) return posixError(errno);
  if (S_ISDIR(status.st_mode)) return posixError(EISDIR);
  if (!S_ISREG(status.st_mode)) return posixError(EINVAL);
  const auto size = static_cast<std::size_t>(status.st_size);
  if (size > bound) return posixError(EFBIG);

  std::string contents;
  contents.reserve(size + kPadding);
  preferLargePages(contents.data(), size);
  int error = 0;
  contents.resize_and_overwrite(size, [&](char* into, std::size_t) { return readAll(file.get(), into, size, error); });
  if (error != 0) return posixError(error);
  return contents;
}

std::vector<std::string> FileManager::contentsOfDirectoryAtPath(const std::string& path) {
  std::vector<std::string> names;
  if (!isUsable(path)) return names;
  const std::unique_ptr<DIR, CloseDirectory> directory(opendir(path.c_str()));
  while (const dirent* const entry = directory ? readdir(directory.get()) : nullptr) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") names.emplace_back(name);
  }
  return names;
}

std::optional<NSError> FileManager::createDirectoryAtPath(const std::string& path) {
  if (!isUsable(path)) return posixError(EINVAL);
  std::error_code code;
  fs::create_directories(path, code);
  return errorOf(code);
}

std::optional<NSError> FileManager::removeItemAtPath(const std::string& path) {
  if (!isUsable(path)) return posixError(EINVAL);
  const auto removeOne = [](const char* item, const struct stat*, int kind, FTW*) {
    const bool isDirectory = kind == FTW_DP || kind == FTW_DNR;
    return unlinkat(AT_FDCWD, item, isDirectory ? AT_REMOVEDIR : 0) == 0 ? 0 : errno;
  };
  const int result = nftw(path.c_str(), removeOne, kOpenDirectories, FTW_DEPTH | FTW_PHYS);
  if (result == 0) return std::nullopt;
  return posixError(result > 0 ? result : errno);
}

std::optional<NSError> FileManager::moveItemAtPath(const std::string& from, const std::string& to) {
  if (!isUsable(from) || !isUsable(to)) return posixError(EINVAL);
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return std::nullopt;
  if (errno != EINVAL && errno != ENOSYS) return posixError(errno);
  // A file system that cannot promise it by itself.
  struct stat status {};
  if (lstat(to.c_str(), &status) == 0) return posixError(EEXIST);
  if (rename(from.c_str(), to.c_str()) == 0) return std::nullopt;
  return posixError(errno);
}

void FileManager::removeUnfinishedWrites(const std::string& directory) {
  for (std::string& name : contentsOfDirectoryAtPath(directory)) {
    if (!name.ends_with(kUnfinishedEnding)) continue;
    name.insert(0, directory + "/");
    const FileDescriptor file(open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (file && flock(file.get(), LOCK_EX | LOCK_NB) == 0) unlink(name.c_str());
  }
}

std::optional<NSError> FileManager::writeAtomically(std::string_view bytes, const std::string& path) {
  if (!isUsable(path)) return posixError(EINVAL);
  removeUnfinishedWrites(path.substr(0, path.rfind('/')));
  UnfinishedFile file(path);
  if (!file || !writeAll(file.descriptor(), bytes) || !file.becomeTarget()) return posixError(errno);
  return std::nullopt;
}

}  // namespace quellaro
