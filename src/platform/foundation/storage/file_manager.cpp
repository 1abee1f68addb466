#include "platform/foundation/storage/file_manager.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
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

bool writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

constexpr std::string_view kTemporaryEnding = ".tmp";

// Beside its target, so that the rename stays within one file system, and of this process and write alone.
std::string temporaryNameFor(const std::string& path) {
  static std::atomic<unsigned> count{0};
  return path + "." + std::to_string(getpid()) + "-" + std::to_string(count++) + std::string(kTemporaryEnding);
}

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
  std::error_code code;
  if (!isUsable(path)) return names;
  for (fs::directory_iterator entry(path, code), end; !code && entry != end; entry.increment(code))
    names.push_back(entry->path().filename().string());
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
  std::error_code code;
  if (fs::remove_all(path, code) == 0 && !code) return posixError(ENOENT);
  return errorOf(code);
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

bool FileManager::isUnfinishedWrite(std::string_view name, std::string_view fileName) {
  if (!name.starts_with(fileName) || !name.ends_with(kTemporaryEnding)) return false;
  if (name.size() < fileName.size() + kTemporaryEnding.size() + 2 || name[fileName.size()] != '.') return false;
  name.remove_prefix(fileName.size() + 1);
  name.remove_suffix(kTemporaryEnding.size());
  return name.find_first_not_of("0123456789-") == std::string_view::npos;
}

std::optional<NSError> FileManager::writeAtomically(std::string_view bytes, const std::string& path) {
  if (!isUsable(path)) return posixError(EINVAL);
  const std::string temporary = temporaryNameFor(path);
  std::optional<NSError> problem;
  {
    // What is stored is nobody else's.
    const FileDescriptor file(open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!file) return posixError(errno);
    if (!writeAll(file.get(), bytes)) problem = posixError(errno);
  }
  if (!problem && rename(temporary.c_str(), path.c_str()) != 0) problem = posixError(errno);
  if (problem) unlink(temporary.c_str());
  return problem;
}

}  // namespace quellaro
