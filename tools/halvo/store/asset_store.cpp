#include "store/asset_store.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "assets/halvo_file_manager.h"
#include "platform/foundation/storage/file_manager.h"
#include "store/durable_files.h"
#include "store/store_config.h"
#include "store/store_lock.h"
#include "store/stored_sets.h"

namespace halvo {

namespace {

using namespace quellaro;

bool holds(const std::string& directory, const CueFiles& files) {
  return std::all_of(files.begin(), files.end(), [&](const auto& file) {
    return FileManager::contentsAtPath(inDirectory(directory, file.first)) == file.second;
  });
}

// What holds the version already: nothing, or a set of the same content.
Result<const StoredSet*> sameSet(const std::string& store, const Inventory& inventory, const Publication& publication,
                                 const CueFiles& files) {
  const StoredSet* other = nullptr;
  for (const StoredSet* set : setsNamed(inventory, publication.cue, publication.version)) {
    if (!set->isComplete()) continue;
    if (holds(inDirectory(store, set->path), files)) return set;
    other = set;
  }
  if (other != nullptr)
    return NSError{
        "halvo", 0,
        "version " + publication.version + " of " + publication.cue + " is at " + inDirectory(store, other->path) +
            " already, with other content. Devices tell versions apart by their names alone: choose another, or "
            "list the one that is there with 'halvo store rollback'."};
  return nullptr;
}

Result<Change> publishNow(const std::string& store, const Publication& publication, const CueFiles& files,
                          const ChangeOptions& options, const Progress& progress) {
  const std::string configPath = inDirectory(store, kVersionConfigFile);
  const Result<StoreConfig> config = StoreConfig::read(configPath);
  if (!config) return config.error();
  const Inventory inventory = takeInventory(store, *config);
  const auto same = sameSet(store, inventory, publication, files);
  if (!same) return same.error();
  // What is listed and not there is published again; what is to be signed is listed once more.
  if (*same != nullptr && config->lists(publication) && !options.key)
    return NSError{"halvo", 0,
                   configPath + ": version " + publication.version + " of " + publication.cue +
                       " is listed already, with this content"};
  if (*same != nullptr) return listAgain(store, *config, **same, publication, options);

  const Result<std::string> path = freshPath(store, publication);
  if (!path) return path.error();
  Change change{publication, *path, true, options.key.has_value(), isSignedFor(*config, publication)};
  if (options.dryRun) return change;
  const std::string directory = inDirectory(store, *path);
  const Result<SetRecord> record =
      writeSet(directory, publication, files, options.key ? &*options.key : nullptr, progress);
  if (!record) return record.error();
  if (const auto problem = list(store, *config, publication, {publication.version, *path, record->signature})) {
    FileManager::removeItemAtPath(directory);
    rmdir(parentOf(directory).c_str());
    return *problem;
  }
  return change;
}

}  // namespace

Result<Change> publishIntoStore(const std::string& store, const Publication& publication, const CueFiles& files,
                                const ChangeOptions& options, const Progress& progress) {
  if (options.dryRun) {
    if (FileManager::fileExistsAtPath(store) && !FileManager::directoryExistsAtPath(store))
      return errorAt(store, ENOTDIR);
    return publishNow(store, publication, files, options, progress);
  }
  letOthersRead();
  if (const auto problem = FileManager::createDirectoryAtPath(store))
    return errorAt(store, static_cast<int>(problem->code));
  const Result<StoreLock> lock = StoreLock::take(store, options.patienceSeconds);
  if (!lock) return lock.error();
  return publishNow(store, publication, files, options, progress);
}

}  // namespace halvo
