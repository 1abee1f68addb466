#include "platform/foundation/network/received_body.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

namespace quellaro {

namespace {

// Every file of an honest cue but its animation.
constexpr std::size_t kBytesInMemory = std::size_t{1} << 20;

FileDescriptor openWithoutName(const std::string& directory) {
  FileDescriptor file(open(directory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
  if (file) return file;
  // Not every file system can.
  std::string path = directory;
  path += "/.body-XXXXXX";
  FileDescriptor named(mkostemp(path.data(), O_CLOEXEC));
  if (named) unlink(path.c_str());
  return named;
}

}  // namespace

std::optional<URLErrorCode> ReceivedBody::append(std::string_view bytes) {
  if (bytes.size() > bounds_.bytes - size_) return URLErrorCode::DataLengthExceedsMaximum;
  const bool isLarge = !bounds_.directory.empty() && size_ + bytes.size() > kBytesInMemory;
  if (isLarge && !file_ && !moveToFile()) return URLErrorCode::CannotWriteToFile;
  if (!file_)
    memory_ += bytes;
  else if (!writeAll(file_.get(), bytes))
    return URLErrorCode::CannotWriteToFile;
  size_ += bytes.size();
  return std::nullopt;
}

bool ReceivedBody::moveToFile() {
  file_ = openWithoutName(bounds_.directory);
  return file_ && writeAll(file_.get(), std::exchange(memory_, {}));
}

std::optional<std::string> ReceivedBody::take() {
  if (!file_) return std::move(memory_);
  std::string whole(size_, '\0');
  for (std::size_t done = 0; done < size_;) {
    const ssize_t count = pread(file_.get(), whole.data() + done, size_ - done, static_cast<off_t>(done));
    if (count == 0 || (count < 0 && errno != EINTR)) return std::nullopt;
    if (count > 0) done += static_cast<std::size_t>(count);
  }
  file_ = FileDescriptor();
  return whole;
}

}  // namespace quellaro
