#include "export/staged_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

namespace halvo {

namespace {

using namespace quellaro;

constexpr mode_t kMode = 0666;

std::string directoryOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

// Beside the target, hidden, and nobody else's.
std::string nameBeside(const std::string& target) {
  const std::size_t slash = target.rfind('/');
  const std::size_t name = slash == std::string::npos ? 0 : slash + 1;
  return target.substr(0, name) + "." + target.substr(name) + ".halvo-" + std::to_string(getpid());
}

}  // namespace

Result<StagedFile> StagedFile::begin(const std::string& target) {
  struct stat status {};
  if (stat(target.c_str(), &status) == 0 && !S_ISREG(status.st_mode))
    return S_ISDIR(status.st_mode) ? posixError(EISDIR) : NSError{"halvo", 0, "it is not a regular file"};
  std::string name;
  FileDescriptor file(open(directoryOf(target).c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, kMode));
  if (!file && (errno == EOPNOTSUPP || errno == EISDIR)) {
    name = nameBeside(target);
    file = FileDescriptor(open(name.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, kMode));
  }
  if (!file) return posixError(errno);
  return StagedFile(target, std::move(file), std::move(name));
}

StagedFile::StagedFile(std::string target, FileDescriptor file, std::string name)
    : target_(std::move(target)), file_(std::move(file)), name_(std::move(name)) {}

StagedFile::StagedFile(StagedFile&& other) noexcept
    : target_(std::move(other.target_)), file_(std::move(other.file_)), name_(std::exchange(other.name_, {})) {}

StagedFile::~StagedFile() {
  if (!name_.empty()) unlink(name_.c_str());
}

std::optional<NSError> StagedFile::putInPlace() {
  if (fsync(file_.get()) != 0) return posixError(errno);
  if (name_.empty()) {
    const std::string name = nameBeside(target_);
    const std::string open = "/proc/self/fd/" + std::to_string(file_.get());
    if (linkat(AT_FDCWD, open.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) != 0) return posixError(errno);
    name_ = name;
  }
  if (std::rename(name_.c_str(), target_.c_str()) != 0) return posixError(errno);
  name_.clear();
  return std::nullopt;
}

}  // namespace halvo
