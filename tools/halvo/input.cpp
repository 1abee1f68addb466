#include "input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/foundation/memory/limits.h"
#include "platform/foundation/storage/file_descriptor.h"
#include "platform/foundation/storage/file_manager.h"

namespace halvo {

namespace {

using namespace quellaro;

constexpr std::size_t kChunk = std::size_t{1} << 20;

Result<std::string> readToEnd(int file) {
  std::string text;
  while (text.size() <= limits::kFileBytes) {
    const std::size_t before = text.size();
    text.resize(before + kChunk);
    const ssize_t got = read(file, text.data() + before, kChunk);
    if (got < 0 && errno != EINTR) return posixError(errno);
    text.resize(before + static_cast<std::size_t>(got > 0 ? got : 0));
    if (got == 0) return text;
  }
  return posixError(EFBIG);
}

}  // namespace

bool isStream(const std::string& name) {
  struct stat status {};
  return name == "-" || (stat(name.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode));
}

Result<std::string> readInput(const std::string& name) {
  if (name == "-") return readToEnd(STDIN_FILENO);
  // The library refuses streams, as they can make a reader wait.
  if (!isStream(name)) return FileManager::readAtPath(name);
  const FileDescriptor file(open(name.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file) return posixError(errno);
  return readToEnd(file.get());
}

}  // namespace halvo
