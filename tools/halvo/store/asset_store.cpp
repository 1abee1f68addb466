#include "store/asset_store.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <utility>

#include "assets/halvo_file_manager.h"
#include "platform/foundation/storage/file_descriptor.h"
#include "platform/foundation/storage/file_manager.h"
#include "store/store_config.h"

namespace halvo {

namespace {

using namespace quellaro;

constexpr std::size_t kChunk = std::size_t{1} << 20;
constexpr std::size_t kLongestComponent = 100;
constexpr int kMostAttempts = 10000;

NSError errorAt(const std::string& path, int errnoValue) {
  return {"halvo", errnoValue, path + ": " + posixError(errnoValue).localizedDescription};
}

std::string inDirectory(const std::string& directory, const std::string& name) {
  std::string path = directory;
  return path.append("/").append(name);
}

// Characters that mean nothing to a file system and nothing in an address; nothing hidden.
std::string pathComponent(const std::string& text) {
  std::string component = text.substr(0, kLongestComponent);
  for (char& c : component) {
    const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
                         c == '-' || c == '_' || c == '~';
    if (!isPlain) c = '_';
  }
  if (component.front() == '.') component.front() = '_';
  return component;
}

// Makes the first of cue/version, cue/version-2, cue/version-3 and so on that does not exist yet.
Result<std::string> makeFreshDirectory(const std::string& store, const Publication& publication) {
  const std::string cue = pathComponent(publication.cue);
  if (mkdir((store + "/" + cue).c_str(), 0777) != 0 && errno != EEXIST) return errorAt(store + "/" + cue, errno);
  const std::string wanted = cue + "/" + pathComponent(publication.version);
  std::string path = wanted;
  for (int i = 2; mkdir(inDirectory(store, path).c_str(), 0777) != 0; ++i) {
    if (errno != EEXIST || i > kMostAttempts) return errorAt(inDirectory(store, path), errno);
    path = wanted;
    path += "-" + std::to_string(i);
  }
  return path;
}

// Onto the disk, so that not even a power cut leaves the store pointing at what is not there.
std::optional<NSError> writeDurably(const std::string& path, std::string_view bytes,
                                    const std::function<void(std::size_t)>& onWritten) {
  const FileDescriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  if (!file) return errorAt(path, errno);
  while (!bytes.empty()) {
    const ssize_t count = write(file.get(), bytes.data(), std::min(bytes.size(), kChunk));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errorAt(path, errno);
    bytes.remove_prefix(static_cast<std::size_t>(count));
    onWritten(static_cast<std::size_t>(count));
  }
  if (fsync(file.get()) != 0) return errorAt(path, errno);
  return std::nullopt;
}

void syncDirectory(const std::string& path) {
  const FileDescriptor directory(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (directory) fsync(directory.get());
}

std::optional<NSError> writeFiles(const std::string& directory, const CueFiles& files, const Progress& progress) {
  std::size_t total = 0;
  std::size_t written = 0;
  for (const auto& [name, bytes] : files) total += bytes.size();
  for (const auto& [name, bytes] : files) {
    auto problem = writeDurably(inDirectory(directory, name), bytes, [&](std::size_t count) {
      written += count;
      progress(written, total);
    });
    if (problem) return problem;
  }
  syncDirectory(directory);
  return std::nullopt;
}

std::optional<NSError> replaceDurably(const std::string& path, std::string_view bytes) {
  const std::string temporary = path + "." + std::to_string(getpid()) + ".tmp";
  unlink(temporary.c_str());
  std::optional<NSError> problem = writeDurably(temporary, bytes, [](std::size_t) {});
  if (!problem && rename(temporary.c_str(), path.c_str()) != 0) problem = errorAt(path, errno);
  if (problem) unlink(temporary.c_str());
  return problem;
}

}  // namespace

Result<std::string> publishIntoStore(const std::string& store, const Publication& publication, const CueFiles& files,
                                     const Progress& progress) {
  if (const auto problem = FileManager::createDirectoryAtPath(store))
    return errorAt(store, static_cast<int>(problem->code));
  // Held until the end: two publications at the same time would lose one of the two.
  const FileDescriptor lock(open(store.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!lock) return errorAt(store, errno);
  if (flock(lock.get(), LOCK_EX | LOCK_NB) != 0)
    return NSError{"halvo", errno, store + ": somebody else is publishing into this store"};

  const std::string configPath = store + "/" + kVersionConfigFile;
  const Result<StoreConfig> config = StoreConfig::read(configPath);
  if (!config) return config.error();
  if (config->lists(publication))
    return NSError{"halvo", 0,
                   configPath + ": version " + publication.version + " of " + publication.cue +
                       " is listed already. Devices tell versions apart by their names alone: choose another."};

  const Result<std::string> path = makeFreshDirectory(store, publication);
  if (!path) return path.error();
  const std::string directory = store + "/" + *path;
  std::optional<NSError> problem = writeFiles(directory, files, progress);
  if (!problem) {
    syncDirectory(std::filesystem::path(directory).parent_path().string());
    problem = replaceDurably(configPath, config->with(publication, *path));
  }
  if (problem) {
    FileManager::removeItemAtPath(directory);
    return *problem;
  }
  syncDirectory(store);
  return *path;
}

}  // namespace halvo
