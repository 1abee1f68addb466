#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>

#include "check/report.h"
#include "platform/foundation/json/json_writer.h"
#include "store/arguments.h"
#include "store/durable_files.h"
#include "store/listing.h"
#include "store/playable_cue.h"
#include "store/store_commands.h"
#include "store/store_lock.h"
#include "store/stored_sets.h"

namespace halvo {

namespace {

using namespace quellaro;

NSError refusal(const std::string& sentence) { return {"halvo", 0, sentence}; }

// Every library version that has the cue, when all have the same version of it. Where they differ somebody meant them
// to, and one of them would be taken forward.
Result<std::vector<std::string>> servedVersions(const StoreConfig& config, const std::string& cue) {
  std::vector<std::string> sdkVersions;
  std::string told;
  std::optional<std::string> version;
  bool isOne = true;
  for (const Listing& listing : listingsOf(config.entries())) {
    if (listing.cue != cue) continue;
    isOne = isOne && (!version || *version == listing.version);
    version = listing.version;
    sdkVersions.insert(sdkVersions.end(), listing.sdkVersions.begin(), listing.sdkVersions.end());
    told +=
        (told.empty() ? "" : "; ") + printable(listing.version) + " for " + printable(joined(listing.sdkVersions), 200);
  }
  if (sdkVersions.empty()) return refusal("no entry lists " + cue + ": 'halvo publish' does");
  if (!isOne)
    return refusal("library versions have different versions of " + cue + " (" + told +
                   "): say with --sdk-version which are meant");
  return sdkVersions;
}

// The one set that is called so, by its version or its path.
Result<const StoredSet*> setCalled(const std::string& store, const Inventory& inventory, const std::string& cue,
                                   const std::string& name) {
  const auto atPath = std::find_if(inventory.sets.begin(), inventory.sets.end(),
                                   [&](const StoredSet& set) { return set.path == name && set.cue == cue; });
  if (atPath != inventory.sets.end()) return &*atPath;
  std::vector<const StoredSet*> sets = setsNamed(inventory, cue, name);
  std::erase_if(sets, [](const StoredSet* set) { return !set->isComplete(); });
  if (sets.empty()) return refusal(store + ": version " + name + " of " + cue + " is not there, or not whole");
  if (sets.size() == 1) return sets.front();
  std::vector<std::string> paths;
  paths.reserve(sets.size());
  for (const StoredSet* set : sets) paths.push_back(printable(set->path, 200));
  return refusal(store + ": version " + name + " of " + cue + " is there more than once: say which path is meant, " +
                 joined(paths));
}

Result<Change> rollBack(const std::string& store, Publication publication, const ChangeOptions& options) {
  const Result<StoreConfig> config = readStore(store);
  if (!config) return config.error();
  if (publication.sdkVersions.empty()) {
    auto served = servedVersions(*config, publication.cue);
    if (!served) return served.error();
    publication.sdkVersions = std::move(*served);
  }
  const Inventory inventory = takeInventory(store, *config);
  const auto set = setCalled(store, inventory, publication.cue, publication.version);
  if (!set) return set.error();
  if ((*set)->path == publication.version) publication.version = (*set)->version;
  if (const auto files = readPlayableCue(inDirectory(store, (*set)->path)); !files) return files.error();
  if (config->lists(publication) && !options.key) {
    Change change{publication, (*set)->path};
    change.wasListed = true;
    return change;
  }
  return listAgain(store, *config, **set, publication, options);
}

std::string changeJson(const Change& change, bool dryRun) {
  JSONWriter writer;
  writer.beginObject().key("cue").string(change.publication.cue).key("version").string(change.publication.version);
  writeTexts(writer, "sdkVersions", change.publication.sdkVersions);
  writer.key("path").string(change.path).key("changed").boolean(!change.wasListed && !dryRun);
  writer.key("signed").boolean(change.isSigned).key("dryRun").boolean(dryRun);
  return writer.endObject().take();
}

int run(const std::string& store, const Publication& publication, const ChangeOptions& options, bool json) {
  std::optional<StoreLock> lock;
  if (!options.dryRun) {
    letOthersRead();
    Result<StoreLock> taken = StoreLock::take(store, options.patienceSeconds);
    if (!taken) return failure("not rolled back: " + taken.error().localizedDescription);
    lock = std::move(*taken);
  }
  const Result<Change> change = rollBack(store, publication, options);
  if (!change) return failure("not rolled back: " + change.error().localizedDescription);
  const Publication& done = change->publication;
  const char* const what = change->wasListed ? "already listed:" : options.dryRun ? "would list" : "listed";
  if (json)
    std::puts(changeJson(*change, options.dryRun).c_str());
  else
    std::printf("%s version %s of %s for library version %s at %s\n", what, printable(done.version).c_str(),
                done.cue.c_str(), printable(joined(done.sdkVersions), 200).c_str(),
                printable(change->path, 200).c_str());
  if (change->wasListed) return kExitFine;
  if (change->wasSigned && !change->isSigned)
    tell(
        "this version is not signed, and the one before was: devices that check signatures would stay with what they "
        "have. "
        "--sign signs it.");
  if (!options.dryRun) tellHowToUpload(store);
  return kExitFine;
}

}  // namespace

int storeRollback(int argc, char** argv) {
  Publication publication;
  ChangeOptions options;
  std::string keyFile;
  bool json = false;
  CommandLine commandLine;
  commandLine.usage = "store rollback STORE --cue NAME --to VERSION [--sdk-version V...] [options]";
  commandLine.summary =
      "Lists a version again that is in the store, newer or older, under its own path: nothing is copied, and devices\n"
      "fetch it as they check. It has to be whole and playable. VERSION may also be the path of a set, as 'halvo "
      "store\n"
      "list' tells it.";
  commandLine.minimumPositional = commandLine.maximumPositional = 1;
  commandLine.options = {
      {"cue", "NAME", "the cue's name", [&](const std::string& value) { return chooseCue(value, publication.cue); }},
      {"to", "VERSION", "the version to list",
       [&](const std::string& value) { return chooseVersion(value, publication.version); }},
      {"sdk-version", "V", "library version that is to get it, as often as needed (all that have the cue)",
       [&](const std::string& value) { return addSdkVersion(value, publication.sdkVersions); }},
      {"json", "", "one line of JSON", setFlag(json)},
  };
  addChangeOptions(commandLine, options, &keyFile);
  const Parsed parsed = parse(commandLine, argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;
  if (publication.cue.empty()) return usageError(argv[0], "--cue is missing");
  if (publication.version.empty()) return usageError(argv[0], "--to is missing");
  if (const auto problem = readKey(keyFile, options)) return failure(problem->localizedDescription);
  return run(parsed.positional[0], publication, options, json);
}

}  // namespace halvo
