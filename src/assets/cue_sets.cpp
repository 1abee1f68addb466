#include "assets/cue_sets.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>

#include <utility>

#include "assets/halvo_file_manager.h"
#include "platform/foundation/storage/file_manager.h"

namespace quellaro {

namespace {

constexpr const char* kLockFile = "/halvo_assets.lock";
// Beside a cue's staging directory. No normalised cue name has a "-".
constexpr const char* kSetAside = "-aside";
constexpr const char* kDiscarded = "-discarded";
// At once, in all processes.
constexpr int kMostDownloads = 16;

bool move(const std::string& from, const std::string& to) { return !FileManager::moveItemAtPath(from, to); }

void removeLeftovers(const std::string& staging) {
  const std::size_t end = staging.rfind('/');
  const std::string root = staging.substr(0, end + 1);
  const std::string prefix = staging.substr(end + 1) + "-";
  for (const std::string& name : FileManager::contentsOfDirectoryAtPath(root))
    if (name.starts_with(prefix) && FileLock::takeDirectory(root + name))
      HalvoFileManager::removeDirectoryIfExists(root + name);
}

}  // namespace

std::optional<FileLock> CueSets::lock(FileLock::Kind kind) {
  const std::optional<std::string> path = HalvoFileManager::libraryFileURL(kLockFile);
  return path ? FileLock::take(*path, kind) : FileLock();
}

std::optional<CueSets::Identity> CueSets::identityOf(const std::string& cueName) {
  const std::optional<std::string> active = HalvoFileManager::activeDirectory(cueName);
  struct stat status {};
  if (!active || stat(active->c_str(), &status) != 0) return std::nullopt;
  return Identity{status.st_dev, status.st_ino, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

std::optional<CueSets::Staged> CueSets::stage(const std::string& cueName) {
  const std::optional<std::string> first = HalvoFileManager::stagingDirectory(cueName);
  if (!first) return std::nullopt;
  removeLeftovers(*first);
  for (int number = 1; number <= kMostDownloads; ++number) {
    std::string directory = number == 1 ? *first : *first + "-" + std::to_string(number);
    if (number > 1) HalvoFileManager::createDirectoryIfNeeded(directory);
    if (std::optional<FileLock> claim = FileLock::takeDirectory(directory))
      return Staged{std::move(directory), std::move(*claim)};
  }
  return std::nullopt;
}

void CueSets::install(const Staged& staged, const std::string& cueName) {
  const std::optional<std::string> active = HalvoFileManager::activeDirectory(cueName);
  const std::optional<std::string> aside = HalvoFileManager::stagingDirectory(cueName + kSetAside);
  if (!active || !aside) return;
  FileManager::removeUnfinishedWrites(staged.directory);
  if (renameat2(AT_FDCWD, staged.directory.c_str(), AT_FDCWD, active->c_str(), RENAME_EXCHANGE) == 0) {
    HalvoFileManager::removeDirectoryIfExists(staged.directory);
    return;
  }
  if (!move(*active, *aside)) HalvoFileManager::removeDirectoryIfExists(*active);
  HalvoFileManager::moveItem(staged.directory, *active);
  HalvoFileManager::removeDirectoryIfExists(*aside);
}

void CueSets::discard(const std::string& cueName) {
  const std::optional<std::string> active = HalvoFileManager::activeDirectory(cueName);
  const std::optional<std::string> discarded = HalvoFileManager::stagingDirectory(cueName + kDiscarded);
  if (!active || !discarded) return;
  // What a killed process has left.
  HalvoFileManager::removeDirectoryIfExists(*discarded);
  if (!FileManager::fileExistsAtPath(*active)) return;
  // Out of the way as a whole: half a set that a killed process leaves would be played from.
  HalvoFileManager::createDirectoryIfNeeded(discarded->substr(0, discarded->rfind('/')));
  HalvoFileManager::removeDirectoryIfExists(move(*active, *discarded) ? *discarded : *active);
}

void CueSets::mend(const std::string& cueName) {
  const std::optional<std::string> active = HalvoFileManager::activeDirectory(cueName);
  const std::optional<std::string> aside = HalvoFileManager::stagingDirectory(cueName + kSetAside);
  if (!active || !aside || !FileManager::fileExistsAtPath(*aside)) return;
  const std::optional<FileLock> exclusive = lock(FileLock::Kind::Exclusive);
  // Fails, as it should, when a set is there.
  if (exclusive) move(*aside, *active);
}

}  // namespace quellaro
