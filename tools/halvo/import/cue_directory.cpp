#include "import/cue_directory.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

#include "assets/halvo_file_manager.h"
#include "platform/foundation/storage/file_descriptor.h"
#include "platform/foundation/storage/file_manager.h"

namespace halvo {

namespace {

using namespace quellaro;

std::string withoutSlashes(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

std::string parentOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string nameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

Refusal refusalOf(const std::string& path, int errnoValue) {
  return refusal(path, posixError(errnoValue).localizedDescription);
}

bool isCueFile(const std::string& name) {
  return std::find(kCueFiles.begin(), kCueFiles.end(), name) != kCueFiles.end();
}

// What makes a directory something else than a cue's.
std::optional<std::string> whyNoCue(const std::string& directory) {
  if (access(directory.c_str(), R_OK | X_OK) != 0) return posixError(errno).localizedDescription;
  const std::vector<std::string> names = FileManager::contentsOfDirectoryAtPath(directory);
  for (const std::string& name : names) {
    struct stat status {};
    std::string path = directory;
    path.append("/").append(name);
    const bool isFile = lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
    if (!isFile || !isCueFile(name)) return printable(name) + " in it is no file of a cue";
  }
  for (const char* const needed : {kPlayConfigFile, kAnimationFile})
    if (!names.empty() && std::find(names.begin(), names.end(), needed) == names.end())
      return "it has no " + std::string(needed);
  return std::nullopt;
}

// Nothing but the files of a cue goes, and a directory that holds anything else stays.
void removeCue(const std::string& directory) {
  for (const char* const name : kCueFiles) unlink((directory + "/" + name).c_str());
  rmdir(directory.c_str());
}

// Short enough beside a name of any length.
constexpr std::string_view kStagedName = ".halvo-import-";
constexpr std::size_t kRandomLetters = 6;

// Held by whoever writes into the directory, for as long as the process lives. None where others hold it, or where the
// file system has no locks.
FileDescriptor lockOf(const std::string& directory) {
  FileDescriptor lock(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  return lock && flock(lock.get(), LOCK_EX | LOCK_NB) == 0 ? std::move(lock) : FileDescriptor();
}

// What imports have left that were killed.
void removeRemains(const std::string& parent) {
  for (const std::string& name : FileManager::contentsOfDirectoryAtPath(parent)) {
    if (!name.starts_with(kStagedName) || name.size() != kStagedName.size() + kRandomLetters) continue;
    std::string path = parent;
    path.append("/").append(name);
    if (const FileDescriptor lock = lockOf(path)) removeCue(path);
  }
}

// Both names change what they stand for at once; where the file system cannot do that, one after the other.
bool swapPlaces(const std::string& staged, const std::string& target) {
  if (renameat2(AT_FDCWD, staged.c_str(), AT_FDCWD, target.c_str(), RENAME_EXCHANGE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
  const std::string aside = staged + ".old";
  if (rename(target.c_str(), aside.c_str()) != 0) return false;
  if (rename(staged.c_str(), target.c_str()) == 0) return rename(aside.c_str(), staged.c_str()) == 0;
  const int problem = errno;
  rename(aside.c_str(), target.c_str());
  errno = problem;
  return false;
}

// Never in the place of anything.
bool moveInto(const std::string& staged, const std::string& target) {
  if (renameat2(AT_FDCWD, staged.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
  // At worst an empty directory, which others have made just now, gives way.
  return rename(staged.c_str(), target.c_str()) == 0;
}

}  // namespace

std::optional<NSError> writeWhole(std::string_view bytes, const std::string& path) {
  const FileDescriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0666));
  if (!file) return posixError(errno);
  if (!writeAll(file.get(), bytes)) return posixError(errno);
  if (fsync(file.get()) != 0) return posixError(errno);
  return std::nullopt;
}

std::optional<Refusal> whyNoTarget(const std::string& given, bool replace) {
  const std::string target = withoutSlashes(given);
  const std::string name = nameOf(target);
  if (name.empty() || name == "." || name == "..") return refusal(given, "this is no name for a new directory");
  struct stat status {};
  if (lstat(target.c_str(), &status) != 0) {
    if (errno != ENOENT) return refusalOf(given, errno);
    if (!FileManager::directoryExistsAtPath(parentOf(target)))
      return refusal(given, "there is no directory " + printable(parentOf(target)) + " to write it to");
    return std::nullopt;
  }
  if (!replace)
    return refusal(given, S_ISDIR(status.st_mode) ? "it is there already; --replace writes over a cue's directory"
                                                  : "there is something of this name already");
  if (!S_ISDIR(status.st_mode)) return refusal(given, "it is no directory, and so not replaced");
  if (const auto why = whyNoCue(target)) return refusal(given, "it is not replaced: " + *why);
  return std::nullopt;
}

StagedCue::StagedCue(std::string target, std::string path)
    : target_(std::move(target)), path_(std::move(path)), lock_(lockOf(path_)) {}

StagedCue::StagedCue(StagedCue&& other) noexcept
    : target_(std::move(other.target_)), path_(std::exchange(other.path_, "")), lock_(std::move(other.lock_)) {}

StagedCue::~StagedCue() {
  if (!path_.empty()) removeCue(path_);
}

Importing<StagedCue> StagedCue::begin(const std::string& given) {
  const std::string target = withoutSlashes(given);
  removeRemains(parentOf(target));
  const mode_t mask = umask(0);
  umask(mask);
  // Another import that looks for remains may come before the lock; not time after time.
  for (int tries = 0; tries < 10; ++tries) {
    std::string path = (parentOf(target) + "/").append(kStagedName).append(kRandomLetters, 'X');
    if (mkdtemp(path.data()) == nullptr) return refusalOf(given, errno);
    StagedCue staged(target, path);
    const bool isOthers = !staged.lock_ && errno == EWOULDBLOCK;
    if (!isOthers && chmod(path.c_str(), 0777 & ~mask) == 0) return staged;
    if (!isOthers && errno != ENOENT) return refusalOf(given, errno);
  }
  return refusalOf(given, EBUSY);
}

std::optional<Refusal> StagedCue::putInPlace(bool replace) {
  if (auto why = whyNoTarget(target_, replace)) return why;
  const bool isThere = FileManager::directoryExistsAtPath(target_);
  if (!(isThere ? swapPlaces(path_, target_) : moveInto(path_, target_))) return refusalOf(target_, errno);
  if (isThere) removeCue(path_);
  path_.clear();
  return std::nullopt;
}

}  // namespace halvo
