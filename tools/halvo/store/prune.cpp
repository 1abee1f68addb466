#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "assets/halvo_file_manager.h"
#include "check/report.h"
#include "platform/foundation/json/json_writer.h"
#include "platform/foundation/storage/file_manager.h"
#include "store/arguments.h"
#include "store/durable_files.h"
#include "store/listing.h"
#include "store/set_record.h"
#include "store/store_commands.h"
#include "store/store_lock.h"
#include "store/stored_sets.h"

namespace halvo {

namespace {

using namespace quellaro;

constexpr std::int64_t kDay = 86400;
constexpr std::int64_t kLongestKeeping = 36500;

struct Removal {
  std::string path;
  std::uint64_t bytes = 0;
  std::optional<NSError> problem;
};

struct PruneOptions {
  ChangeOptions change;
  std::int64_t days = 7;
  bool json = false;
};

// Files of a cue and nothing else.
std::optional<NSError> removeSet(const std::string& directory) {
  for (const char* file : kCueFiles)
    if (unlink(inDirectory(directory, file).c_str()) != 0 && errno != ENOENT)
      return errorAt(inDirectory(directory, file), errno);
  unlink(inDirectory(directory, kSetRecordFile).c_str());
  if (rmdir(directory.c_str()) != 0) return errorAt(directory, errno);
  // The cue's own, if this was the last one; it stays when it is not empty.
  rmdir(parentOf(directory).c_str());
  return std::nullopt;
}

bool isOlder(const std::string& path, std::int64_t time) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 && status.st_mtime < time;
}

std::vector<Removal> removals(const std::string& store, const Inventory& inventory, const PruneOptions& options) {
  const std::int64_t before = std::time(nullptr) - options.days * kDay;
  std::vector<Removal> removals;
  for (const StoredSet& set : inventory.sets) {
    if (set.isNeeded || set.lastUsed >= before) continue;
    Removal removal{set.path, set.bytes, std::nullopt};
    const std::string directory = inDirectory(store, set.path);
    if (set.holdsOthers)
      removal.problem = NSError{"halvo", 0, directory + ": it holds more than a cue, and so it stays"};
    else if (!options.change.dryRun)
      removal.problem = removeSet(directory);
    removals.push_back(std::move(removal));
  }
  for (const std::string& path : inventory.unfinished) {
    if (!isOlder(inDirectory(store, path), before)) continue;
    Removal removal{path, 0, std::nullopt};
    if (!options.change.dryRun) removal.problem = FileManager::removeItemAtPath(inDirectory(store, path));
    removals.push_back(std::move(removal));
  }
  return removals;
}

void printJson(const std::vector<Removal>& removals, bool dryRun) {
  JSONWriter writer;
  std::uint64_t bytes = 0;
  writer.beginObject().key("dryRun").boolean(dryRun).key("removed").beginArray();
  for (const Removal& removal : removals) {
    if (removal.problem) continue;
    bytes += removal.bytes;
    writer.string(removal.path);
  }
  writer.endArray().key("bytes").integer(static_cast<std::int64_t>(bytes)).key("kept").beginArray();
  for (const Removal& removal : removals)
    if (removal.problem) writer.string(removal.problem->localizedDescription);
  std::puts(writer.endArray().endObject().text().c_str());
}

void printReadably(const std::vector<Removal>& removals, bool dryRun) {
  std::uint64_t bytes = 0;
  for (const Removal& removal : removals) {
    if (removal.problem) continue;
    bytes += removal.bytes;
    std::printf("%s %s\n", dryRun ? "would remove" : "removed", printable(removal.path, 200).c_str());
  }
  std::printf("%s %s\n", sizeText(bytes).c_str(), dryRun ? "would be freed" : "freed");
}

int run(const std::string& store, const PruneOptions& options) {
  std::optional<StoreLock> lock;
  if (!options.change.dryRun) {
    Result<StoreLock> taken = StoreLock::take(store, options.change.patienceSeconds);
    if (!taken) return failure(taken.error().localizedDescription);
    lock = std::move(*taken);
  }
  const Result<StoreConfig> config = readStore(store);
  if (!config) return failure(config.error().localizedDescription);
  if (listingsOf(config->entries()).empty())
    return failure(store + ": it lists nothing at all, so that all of it would go; nothing is removed");
  const Inventory inventory = takeInventory(store, *config);
  const std::vector<Removal> done = removals(store, inventory, options);
  options.json ? printJson(done, options.change.dryRun) : printReadably(done, options.change.dryRun);
  int status = kExitFine;
  for (const std::string& problem : inventory.problems) status = failure(problem);
  for (const Removal& removal : done)
    if (removal.problem) status = failure(removal.problem->localizedDescription);
  return status;
}

}  // namespace

int storePrune(int argc, char** argv) {
  PruneOptions options;
  CommandLine commandLine;
  commandLine.usage = "store prune STORE [--older-than DAYS] [--dry-run] [--json]";
  commandLine.summary =
      "Removes the versions that no entry lists and none has listed for a week, and what processes that were ended "
      "have\n"
      "left behind. Only files of cues go: a directory that holds anything else stays, and that is said. Exit status "
      "1:\n"
      "something could not be read or removed, or stays.";
  commandLine.minimumPositional = commandLine.maximumPositional = 1;
  commandLine.options = {
      {"older-than", "DAYS", "remove what has not been listed for so many days (7)",
       setNumber(options.days, 1, kLongestKeeping)},
      {"json", "", "one line of JSON", setFlag(options.json)},
  };
  addChangeOptions(commandLine, options.change, nullptr);
  const Parsed parsed = parse(commandLine, argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;
  return run(parsed.positional[0], options);
}

}  // namespace halvo
