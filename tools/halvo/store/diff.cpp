#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "assets/halvo_file_manager.h"
#include "assets/version_config.h"
#include "check/report.h"
#include "options.h"
#include "platform/foundation/json/json_writer.h"
#include "store/listing.h"
#include "store/store_commands.h"
#include "store/store_source.h"

namespace halvo {

namespace {

using namespace quellaro;

constexpr std::int64_t kDevicesPatience = 60;

struct Difference {
  std::string sdkVersion;
  std::string cue;
  std::string what;  // "version", "signature", "content" or "analytics"
  std::string first;
  std::string second;
};

// A store, and what devices of each library version find in it.
struct Side {
  std::string name;
  std::unique_ptr<StoreSource> source;
  std::vector<QLHalvoVersionConfig> entries;
};

Result<Side> openSide(const std::string& name, std::int64_t patience) {
  Result<std::unique_ptr<StoreSource>> source = openStoreSource(name, patience);
  if (!source) return source.error();
  StoreAnswer answer = (*source)->get({kVersionConfigFile}).front();
  if (!answer.data) return NSError{"halvo", 0, name + "/" + kVersionConfigFile + ": " + answer.remarks.front().what};
  Result<std::vector<QLHalvoVersionConfig>> entries = decodeVersionConfigs(std::move(*answer.data));
  if (!entries)
    return NSError{"halvo", 0, name + "/" + kVersionConfigFile + ": " + entries.error().localizedDescription};
  return Side{name, std::move(*source), std::move(*entries)};
}

std::string analyticsText(const std::optional<QLHalvoVersionConfig>& entry) {
  if (!entry) return "not served";
  if (!*entry->analytics->enabled) return "off";
  return *entry->analytics->frequency + " " + *entry->analytics->url;
}

// Finds what differs, asking for each pair of sets once.
class Comparison {
 public:
  Comparison(Side first, Side second) : first_(std::move(first)), second_(std::move(second)) {
    std::set<std::string> sdkVersions;
    for (const auto* entries : {&first_.entries, &second_.entries})
      for (const auto& entry : *entries) sdkVersions.insert(entry.sdkVersions->begin(), entry.sdkVersions->end());
    for (const std::string& version : sdkVersions) compare(version);
  }
  const std::vector<Difference>& differences() const { return differences_; }

 private:
  void compare(const std::string& sdkVersion) {
    const auto a = selectForSdkVersion(first_.entries, sdkVersion);
    const auto b = selectForSdkVersion(second_.entries, sdkVersion);
    if (analyticsText(a) != analyticsText(b))
      differences_.push_back({sdkVersion, "", "analytics", analyticsText(a), analyticsText(b)});
    std::set<std::string> cues;
    for (const auto* entry : {&a, &b})
      if (*entry)
        for (const auto& [name, cue] : *(*entry)->cues) cues.insert(name);
    for (const std::string& cue : cues) compareCue(sdkVersion, cue, cueIn(a, cue), cueIn(b, cue));
  }

  static std::optional<QLHalvoVersionCue> cueIn(const std::optional<QLHalvoVersionConfig>& entry,
                                                const std::string& cue) {
    if (!entry || entry->cues->count(cue) == 0) return std::nullopt;
    return entry->cues->at(cue);
  }

  void compareCue(const std::string& sdkVersion, const std::string& cue, const std::optional<QLHalvoVersionCue>& a,
                  const std::optional<QLHalvoVersionCue>& b) {
    const std::string versionA = a ? *a->version : "";
    const std::string versionB = b ? *b->version : "";
    if (!a || !b || versionA != versionB) {
      differences_.push_back({sdkVersion, cue, "version", versionA, versionB});
      return;
    }
    if (a->signature != b->signature) {
      const auto text = [](const SetSignature& it) { return it.signature.empty() ? "not signed" : it.signature; };
      differences_.push_back({sdkVersion, cue, "signature", text(a->signature), text(b->signature)});
    }
    if (const auto content = differentContent(*a->filepath, *b->filepath))
      differences_.push_back({sdkVersion, cue, "content", content->first, content->second});
  }

  // The two paths and what became of the first file that differs; nothing when none does.
  using Content = std::optional<std::pair<std::string, std::string>>;
  const Content& differentContent(const std::string& a, const std::string& b) {
    const auto key = std::pair(a, b);
    if (const auto known = contents_.find(key); known != contents_.end()) return known->second;
    Content content;
    for (const char* file : kCueFiles) {
      const StoreAnswer one = first_.source->get({a + "/" + file}).front();
      const StoreAnswer other = second_.source->get({b + "/" + file}).front();
      if (one.data && one.data == other.data) continue;
      content = std::pair(describe(a + "/" + file, one), describe(b + "/" + file, other));
      break;
    }
    return contents_[key] = std::move(content);
  }

  static std::string describe(const std::string& path, const StoreAnswer& answer) {
    if (answer.data) return path + " (" + std::to_string(answer.data->size()) + " bytes)";
    return path + " (" + answer.remarks.front().what + ")";
  }

  Side first_;
  Side second_;
  std::vector<Difference> differences_;
  std::map<std::pair<std::string, std::string>, Content> contents_;
};

void printJson(const std::vector<Difference>& differences) {
  JSONWriter writer;
  writer.beginObject().key("same").boolean(differences.empty()).key("differences").beginArray();
  for (const Difference& difference : differences)
    writer.beginObject()
        .key("sdkVersion")
        .string(difference.sdkVersion)
        .key("cue")
        .string(difference.cue)
        .key("what")
        .string(difference.what)
        .key("first")
        .string(difference.first)
        .key("second")
        .string(difference.second)
        .endObject();
  std::puts(writer.endArray().endObject().text().c_str());
}

void printReadably(const std::vector<Difference>& differences) {
  const auto shown = [](const std::string& text) { return text.empty() ? "not listed" : printable(text, 200); };
  for (const Difference& difference : differences)
    std::printf("%s%s: %s: %s | %s\n", printable(difference.sdkVersion).c_str(),
                (difference.cue.empty() ? "" : " " + printable(difference.cue)).c_str(), difference.what.c_str(),
                shown(difference.first).c_str(), shown(difference.second).c_str());
}

}  // namespace

int storeDiff(int argc, char** argv) {
  std::int64_t patience = kDevicesPatience;
  bool json = false;
  CommandLine commandLine;
  commandLine.usage = "store diff A B [--json]";
  commandLine.summary =
      "Prints what devices get differently from two stores, one line each: directories, or addresses, which are asked "
      "as\n"
      "devices ask them. For each library version and cue: the version, the signature, the content of versions of one\n"
      "name, and the analytics settings. Exit status: 0 nothing differs, 1 something does, or one cannot be read.";
  commandLine.minimumPositional = commandLine.maximumPositional = 2;
  commandLine.options = {
      {"timeout", "SECONDS", "how long a server may be silent (60, as devices have it)",
       setNumber(patience, 1, kDevicesPatience * kDevicesPatience)},
      {"json", "", "one line of JSON", setFlag(json)},
  };
  const Parsed parsed = parse(commandLine, argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;
  Result<Side> first = openSide(parsed.positional[0], patience);
  if (!first) return failure(first.error().localizedDescription);
  Result<Side> second = openSide(parsed.positional[1], patience);
  if (!second) return failure(second.error().localizedDescription);
  const Comparison comparison(std::move(*first), std::move(*second));
  json ? printJson(comparison.differences()) : printReadably(comparison.differences());
  return comparison.differences().empty() ? kExitFine : kExitFailure;
}

}  // namespace halvo
