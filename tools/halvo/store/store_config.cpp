#include "store/store_config.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "platform/foundation/json/json_writer.h"
#include "platform/foundation/storage/file_manager.h"
#include "store/listing.h"

namespace halvo {

namespace {

using namespace quellaro;
using Names = std::vector<std::string>;

constexpr const char* kSdkVersions = "sdk_versions";
constexpr const char* kCues = "cues";
constexpr const char* kAnalytics = "analytics";

bool contains(const Names& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// The cues of an entry, if there is one, with the published one among them.
void writeCues(JSONWriter& writer, const std::optional<JSONValue>& cues, const Publication& publication,
               const QLHalvoVersionCue& listing) {
  writer.key(kCues).beginObject();
  if (cues)
    for (const auto& [name, value] : cues->members())
      if (name != publication.cue) writer.key(name).raw(value.text());
  writer.key(publication.cue).beginObject();
  writer.key("version").string(publication.version).key("filepath").string(*listing.filepath);
  writeSignature(writer, listing.signature);
  writer.endObject().endObject();
}

// An entry for these library versions; `cues` writes its cues.
template <class WriteCues>
void writeEntry(JSONWriter& writer, const JSONValue& entry, const Names& sdkVersions, WriteCues cues) {
  writer.beginObject();
  writeTexts(writer, kSdkVersions, sdkVersions);
  cues();
  for (const auto& [key, value] : entry.members())
    if (key != kSdkVersions && key != kCues) writer.key(key).raw(value.text());
  writer.endObject();
}

// Those of an entry's library versions that are in the list, or those that are not.
Names sdkVersionsOf(const JSONValue& entry, const Names& list, bool wanted) {
  Names names;
  for (const JSONValue& value : entry.member(kSdkVersions)->elements())
    if (const std::string name(*value.string()); contains(list, name) == wanted) names.push_back(name);
  return names;
}

}  // namespace

Result<StoreConfig> StoreConfig::read(const std::string& path) {
  std::string text = "[]";
  if (FileManager::fileExistsAtPath(path)) {
    Result<std::string> bytes = FileManager::readAtPath(path);
    if (!bytes) return NSError{"halvo", 0, path + ": " + bytes.error().localizedDescription};
    text = std::move(*bytes);
  }
  Result<StoreConfig> config = parse(std::move(text));
  if (!config) return NSError{"halvo", 0, path + ": " + config.error().localizedDescription};
  return config;
}

Result<StoreConfig> StoreConfig::parse(std::string text) {
  auto entries = decodeVersionConfigs(text);
  if (!entries) return entries.error();
  Result<JSONDocument> document = JSONDocument::parse(std::move(text));
  if (!document) return document.error();
  return StoreConfig(std::move(*document), std::move(*entries));
}

bool StoreConfig::lists(const Publication& publication) const {
  return std::all_of(publication.sdkVersions.begin(), publication.sdkVersions.end(), [&](const std::string& sdk) {
    const auto entry = selectForSdkVersion(entries_, sdk);
    if (!entry) return false;
    const auto cue = entry->cues->find(publication.cue);
    return cue != entry->cues->end() && cue->second.version == publication.version;
  });
}

std::string StoreConfig::with(const Publication& publication, const QLHalvoVersionCue& listing) const {
  JSONWriter writer;
  writer.beginArray();
  // Each library version counts where it is listed first, as devices read it.
  Names open = publication.sdkVersions;
  const std::vector<JSONValue> entries = document_.root().elements();
  for (const JSONValue& entry : entries) {
    const JSONValue cues = *entry.member(kCues);
    const Names served = sdkVersionsOf(entry, open, true);
    const Names others = sdkVersionsOf(entry, open, false);
    if (!served.empty()) writeEntry(writer, entry, served, [&] { writeCues(writer, cues, publication, listing); });
    if (served.empty() || !others.empty())
      writeEntry(writer, entry, others, [&] { writer.key(kCues).raw(cues.text()); });
    std::erase_if(open, [&](const std::string& name) { return contains(served, name); });
  }
  if (!open.empty()) {
    writer.beginObject();
    writeTexts(writer, kSdkVersions, open);
    writeCues(writer, std::nullopt, publication, listing);
    writer.key(kAnalytics)
        .raw(entries.empty() ? R"({"enable":false,"frequency":"M","url":""})"
                             : entries.front().member(kAnalytics)->text());
    writer.endObject();
  }
  return writer.endArray().take() + "\n";
}

}  // namespace halvo
