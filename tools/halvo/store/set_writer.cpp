#include "store/set_writer.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <utility>

#include "platform/foundation/storage/file_manager.h"
#include "store/durable_files.h"
#include "store/listed_path.h"

namespace halvo {

namespace {

using namespace quellaro;

constexpr std::size_t kLongestComponent = 100;
constexpr int kMostAttempts = 10000;

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

bool isThere(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0;
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
  return std::nullopt;
}

}  // namespace

// The first of cue/version, cue/version-2, cue/version-3 and so on that does not exist yet.
Result<std::string> freshPath(const std::string& store, const Publication& publication) {
  const std::string cue = pathComponent(publication.cue);
  if (isThere(inDirectory(store, cue)) && !realPathWithin(store, inDirectory(store, cue)))
    return NSError{"halvo", 0, inDirectory(store, cue) + ": it leads out of the store"};
  const std::string wanted = inDirectory(cue, pathComponent(publication.version));
  std::string path = wanted;
  for (int i = 2; isThere(inDirectory(store, path)); ++i) {
    if (i > kMostAttempts) return errorAt(inDirectory(store, path), EEXIST);
    path = wanted;
    path += "-" + std::to_string(i);
  }
  return path;
}

// Everything of a set under a hidden name first: at its own path it is complete, whenever the process is killed.
Result<SetRecord> writeSet(const std::string& directory, const Publication& publication, const CueFiles& files,
                           const SigningKey* key, const Progress& progress) {
  const std::string parent = parentOf(directory);
  if (mkdir(parent.c_str(), 0777) != 0 && errno != EEXIST) return errorAt(parent, errno);
  const std::string staged = unfinishedPath(directory);
  FileManager::removeItemAtPath(staged);
  if (mkdir(staged.c_str(), 0777) != 0) return errorAt(staged, errno);
  SetRecord record{publication.cue, publication.version, {}};
  std::optional<NSError> problem = writeFiles(staged, files, progress);
  if (!problem && key != nullptr) {
    auto signature = key->sign(publication.cue, publication.version, staged);
    if (signature)
      record.signature = std::move(*signature);
    else
      problem = signature.error();
  }
  if (!problem) problem = writeDurably(inDirectory(staged, kSetRecordFile), encodeSetRecord(record));
  syncDirectory(staged);
  if (!problem) {
    problem = FileManager::moveItemAtPath(staged, directory);
    if (problem) problem = errorAt(directory, static_cast<int>(problem->code));
  }
  if (problem) {
    FileManager::removeItemAtPath(staged);
    // The cue's own, when it is new.
    rmdir(parent.c_str());
    return *problem;
  }
  syncDirectory(parent);
  return record;
}

}  // namespace halvo
