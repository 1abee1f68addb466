#include "store/stored_sets.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>

#include "assets/halvo_file_manager.h"
#include "platform/foundation/storage/file_manager.h"
#include "platform/foundation/text/utf8.h"
#include "store/durable_files.h"
#include "store/listed_path.h"
#include "store/set_record.h"

namespace halvo {

namespace {

using namespace quellaro;
namespace fs = std::filesystem;

constexpr int kDeepest = 16;

bool isUnfinished(std::string_view name) { return name.starts_with('.') && name.ends_with(kUnfinishedEnding); }

class Walk {
 public:
  explicit Walk(const std::string& store) : store_(store) { enter("", 0); }
  Inventory take() { return std::move(inventory_); }

 private:
  std::string at(const std::string& path) const { return path.empty() ? store_ : inDirectory(store_, path); }

  void enter(const std::string& path, int depth) {
    std::error_code error;
    std::vector<std::string> names;
    for (fs::directory_iterator entry(at(path), error), end; !error && entry != end; entry.increment(error))
      names.push_back(entry->path().filename().string());
    if (error)
      inventory_.problems.push_back(printable(at(path), 200) + ": " + posixError(error.value()).localizedDescription);
    std::sort(names.begin(), names.end());
    StoredSet set;
    set.path = path;
    std::vector<std::string> directories;
    for (const std::string& name : names) look(path, name, set, directories);
    if (!path.empty()) keep(std::move(set));
    if (depth == kDeepest && !directories.empty())
      inventory_.problems.push_back(printable(at(directories.front()), 200) +
                                    ": too many directories within each other");
    else
      for (const std::string& directory : directories) enter(directory, depth + 1);
  }

  void look(const std::string& directory, const std::string& name, StoredSet& set,
            std::vector<std::string>& directories) {
    const std::string path = directory.empty() ? name : inDirectory(directory, name);
    struct stat status {};
    if (lstat(at(path).c_str(), &status) != 0) return;
    if (isUnfinished(name)) inventory_.unfinished.push_back(path);
    set.lastUsed = std::max<std::int64_t>(set.lastUsed, status.st_mtime);
    const bool isFile = S_ISREG(status.st_mode) && !isUnfinished(name);
    if (isFile) set.bytes += static_cast<std::uint64_t>(status.st_size);
    if (S_ISDIR(status.st_mode) && !name.starts_with('.')) directories.push_back(path);
    if (isFile && std::find(kCueFiles.begin(), kCueFiles.end(), name) != kCueFiles.end())
      found_[directory].push_back(name);
    else if (!isFile || name != kSetRecordFile)
      set.holdsOthers = true;
  }

  // If it is one.
  void keep(StoredSet set) {
    const std::vector<std::string>& found = found_[set.path];
    const std::optional<SetRecord> record = readSetRecord(at(set.path));
    if (found.empty() && !record) return;
    for (const char* file : kCueFiles)
      if (std::find(found.begin(), found.end(), file) == found.end()) set.missing.emplace_back(file);
    struct stat status {};
    if (stat(at(set.path).c_str(), &status) == 0) set.lastUsed = std::max<std::int64_t>(set.lastUsed, status.st_mtime);
    set.cue = set.path.substr(0, set.path.find('/'));
    set.version = set.path.substr(set.path.rfind('/') + 1);
    if (record) {
      set.cue = record->cue;
      set.version = record->version;
      set.signature = record->signature;
    }
    inventory_.sets.push_back(std::move(set));
  }

  const std::string& store_;
  Inventory inventory_;
  std::map<std::string, std::vector<std::string>> found_;
};

}  // namespace

Inventory takeInventory(const std::string& store, const StoreConfig& config) {
  Inventory inventory = Walk(store).take();
  // By real path.
  std::map<std::string, std::vector<std::string>> listed;
  std::set<std::string> needed;
  const auto note = [&](const std::string& cue, const std::string& version, const std::string& filepath) {
    const auto directory = listedDirectory(filepath);
    if (!directory) return;
    const std::string path = inDirectory(store, *directory);
    if (const auto real = realPathWithin(store, path)) {
      listed[*real].push_back(cue + " " + version);
      needed.insert(*real);
    }
    for (const char* file : kCueFiles)
      if (const auto real = realPathWithin(store, inDirectory(path, file))) needed.insert(parentOf(*real));
  };
  for (const auto& entry : config.entries())
    for (const auto& [name, cue] : *entry.cues) note(name, *cue.version, *cue.filepath);
  for (StoredSet& set : inventory.sets) {
    const auto real = realPathWithin(store, inDirectory(store, set.path));
    if (!real) continue;
    set.listedAs = listed[*real];
    set.isNeeded = needed.count(*real) > 0;
  }
  std::sort(inventory.sets.begin(), inventory.sets.end(),
            [](const StoredSet& a, const StoredSet& b) { return a.path < b.path; });
  return inventory;
}

std::vector<const StoredSet*> setsNamed(const Inventory& inventory, const std::string& cue,
                                        const std::string& version) {
  const std::string name = cue + " " + version;
  std::vector<const StoredSet*> sets;
  for (const StoredSet& set : inventory.sets) {
    const auto& names = set.listedAs;
    if ((set.cue == cue && set.version == version) || std::find(names.begin(), names.end(), name) != names.end())
      sets.push_back(&set);
  }
  return sets;
}

Result<StoreConfig> readStore(const std::string& store) {
  const std::string path = inDirectory(store, kVersionConfigFile);
  if (!FileManager::directoryExistsAtPath(store))
    return NSError{"halvo", ENOENT, store + ": there is no such directory"};
  if (!FileManager::fileExistsAtPath(path))
    return NSError{"halvo", ENOENT, store + ": this is no store: it has no " + kVersionConfigFile};
  return StoreConfig::read(path);
}

}  // namespace halvo
