#include <cstdio>
#include <ctime>
#include <string>

#include "check/report.h"
#include "options.h"
#include "platform/foundation/json/json_writer.h"
#include "store/listed_path.h"
#include "store/listing.h"
#include "store/store_commands.h"
#include "store/stored_sets.h"

namespace halvo {

namespace {

using namespace quellaro;

constexpr std::int64_t kDay = 86400;

struct Sizes {
  std::uint64_t all = 0;
  std::uint64_t unused = 0;
};

Sizes sizesOf(const Inventory& inventory) {
  Sizes sizes;
  for (const StoredSet& set : inventory.sets) {
    sizes.all += set.bytes;
    if (!set.isNeeded) sizes.unused += set.bytes;
  }
  return sizes;
}

std::int64_t whole(std::uint64_t number) { return static_cast<std::int64_t>(number); }

std::int64_t daysSince(std::int64_t time) { return std::max<std::int64_t>(0, std::time(nullptr) - time) / kDay; }

void writeSet(JSONWriter& writer, const StoredSet& set) {
  writer.beginObject().key("path").string(set.path).key("cue").string(set.cue).key("version").string(set.version);
  writer.key("bytes").integer(whole(set.bytes)).key("complete").boolean(set.isComplete());
  writeTexts(writer, "missing", set.missing);
  writer.key("listed").boolean(set.isNeeded).key("signed").boolean(!set.signature.signature.empty());
  writer.key("lastUsed").integer(set.lastUsed).endObject();
}

void printJson(const std::string& store, const StoreConfig& config, const Inventory& inventory) {
  const Sizes sizes = sizesOf(inventory);
  JSONWriter writer;
  writer.beginObject().key("store").string(store).key("bytes").integer(whole(sizes.all));
  writer.key("unusedBytes").integer(whole(sizes.unused)).key("entries").beginArray();
  for (const auto& entry : config.entries()) {
    writer.beginObject();
    writeTexts(writer, "sdkVersions", *entry.sdkVersions);
    writer.key("cues").beginArray();
    for (const auto& [name, cue] : *entry.cues) {
      writer.beginObject().key("cue").string(name).key("version").string(*cue.version);
      writer.key("filepath").string(*cue.filepath).key("signed").boolean(!cue.signature.signature.empty()).endObject();
    }
    writer.endArray().key("analytics").beginObject().key("enable").boolean(*entry.analytics->enabled);
    writer.key("frequency").string(*entry.analytics->frequency).key("url").string(*entry.analytics->url).endObject();
    writer.endObject();
  }
  writer.endArray().key("sets").beginArray();
  for (const StoredSet& set : inventory.sets) writeSet(writer, set);
  writer.endArray();
  writeTexts(writer, "unfinished", inventory.unfinished);
  writeTexts(writer, "problems", inventory.problems);
  std::puts(writer.endObject().text().c_str());
}

void printEntry(const QLHalvoVersionConfig& entry) {
  const QLHalvoAnalyticsInfo& analytics = *entry.analytics;
  std::printf("For library version %s:\n", printable(joined(*entry.sdkVersions), 200).c_str());
  for (const auto& [name, cue] : *entry.cues)
    std::printf("  %s version %s at %s%s\n", printable(name).c_str(), printable(*cue.version).c_str(),
                printable(*cue.filepath, 200).c_str(), cue.signature.signature.empty() ? "" : ", signed");
  if (*analytics.enabled)
    std::printf("  usage is reported %s to %s\n", analytics.frequency == "M" ? "monthly" : "quarterly",
                printable(*analytics.url, 200).c_str());
  else
    std::puts("  usage is not counted");
}

std::string stateOf(const StoredSet& set) {
  std::string state;
  if (!set.isComplete()) state += "incomplete, without " + joined(set.missing) + "; ";
  if (set.isNeeded) return state + "listed";
  return state + "unused for " + std::to_string(daysSince(set.lastUsed)) + " days";
}

void printReadably(const std::string& store, const StoreConfig& config, const Inventory& inventory) {
  const Sizes sizes = sizesOf(inventory);
  for (const auto& entry : config.entries()) printEntry(entry);
  std::printf("%s in %s, %s of it unused:\n", sizeText(sizes.all).c_str(), store.c_str(),
              sizeText(sizes.unused).c_str());
  for (const StoredSet& set : inventory.sets)
    std::printf("  %s: %s version %s, %s, %s\n", printable(set.path, 200).c_str(), printable(set.cue).c_str(),
                printable(set.version).c_str(), sizeText(set.bytes).c_str(), stateOf(set).c_str());
  for (const std::string& path : inventory.unfinished)
    std::printf("  %s: left by a process that was ended\n", printable(path, 200).c_str());
}

}  // namespace

int storeList(int argc, char** argv) {
  bool json = false;
  CommandLine commandLine;
  commandLine.usage = "store list STORE [--json]";
  commandLine.summary =
      "Prints what each entry of a store lists, and which versions lie in it: their sizes, whether they are whole, "
      "and\n"
      "for how long none of the entries has listed them. Exit status 1: it is no store, or not all of it can be read.";
  commandLine.minimumPositional = commandLine.maximumPositional = 1;
  commandLine.options = {{"json", "", "one line of JSON", setFlag(json)}};
  const Parsed parsed = parse(commandLine, argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;
  const std::string& store = parsed.positional[0];
  const Result<StoreConfig> config = readStore(store);
  if (!config) return failure(config.error().localizedDescription);
  const Inventory inventory = takeInventory(store, *config);
  json ? printJson(store, *config, inventory) : printReadably(store, *config, inventory);
  for (const std::string& problem : inventory.problems) tell(problem);
  return inventory.problems.empty() ? kExitFine : kExitFailure;
}

}  // namespace halvo
