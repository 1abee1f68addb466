#include "store/durable_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "platform/foundation/storage/file_descriptor.h"

namespace halvo {

namespace {

using namespace quellaro;

constexpr std::size_t kChunk = std::size_t{1} << 20;
constexpr mode_t kPrivate = 0600;
constexpr mode_t kPublic = 0666;
constexpr mode_t kOnlyOwnerWrites = 022;

}  // namespace

void letOthersRead() { umask(kOnlyOwnerWrites); }

NSError errorAt(const std::string& path, int errnoValue) {
  return {"halvo", errnoValue, path + ": " + posixError(errnoValue).localizedDescription};
}

std::string inDirectory(const std::string& directory, const std::string& name) {
  std::string path = directory;
  return path.append("/").append(name);
}

std::string parentOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string unfinishedPath(const std::string& path) {
  const std::string name = path.substr(path.rfind('/') + 1) + "." + std::to_string(getpid());
  return inDirectory(parentOf(path), "." + name + std::string(kUnfinishedEnding));
}

std::optional<NSError> writeDurably(const std::string& path, std::string_view bytes, const OnWritten& onWritten,
                                    bool isPrivate) {
  const FileDescriptor file(
      open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, isPrivate ? kPrivate : kPublic));
  if (!file) return errorAt(path, errno);
  while (!bytes.empty()) {
    const ssize_t count = write(file.get(), bytes.data(), std::min(bytes.size(), kChunk));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errorAt(path, errno);
    bytes.remove_prefix(static_cast<std::size_t>(count));
    if (onWritten) onWritten(static_cast<std::size_t>(count));
  }
  if (fsync(file.get()) != 0) return errorAt(path, errno);
  return std::nullopt;
}

std::optional<NSError> replaceDurably(const std::string& path, std::string_view bytes) {
  const std::string temporary = unfinishedPath(path);
  unlink(temporary.c_str());
  std::optional<NSError> problem = writeDurably(temporary, bytes);
  if (!problem && rename(temporary.c_str(), path.c_str()) != 0) problem = errorAt(path, errno);
  if (problem) unlink(temporary.c_str());
  if (!problem) syncDirectory(parentOf(path));
  return problem;
}

void syncDirectory(const std::string& path) {
  const FileDescriptor directory(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (directory) fsync(directory.get());
}

}  // namespace halvo
