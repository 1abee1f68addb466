#include <cstdio>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "analytics/aggregated_cue_event.h"
#include "analytics/analytics_data.h"
#include "analytics/network_cue_event.h"
#include "analytics/service_provider.h"
#include "assets/halvo_file_manager.h"
#include "assets/halvo_utility.h"
#include "assets/version_config.h"
#include "commands.h"
#include "options.h"
#include "platform/foundation/application.h"
#include "platform/foundation/json/json_writer.h"
#include "platform/foundation/memory/limits.h"
#include "platform/foundation/storage/bundle.h"
#include "platform/foundation/storage/file_manager.h"
#include "play/host_options.h"

namespace halvo {

namespace {

using namespace quellaro;

// In place of an identity that the first upload will make.
constexpr const char* kNoDistinctID = "(made by the first upload)";

struct UsageFile {
  std::string path;
  std::optional<NSError> problem;
  std::vector<MixpanelAggregatedCueEvent> records;
  std::optional<std::string> body;
};

struct Usage {
  std::string directory;
  QLHalvoAnalyticsInfo settings;
  std::optional<std::string> distinctID;
  std::vector<UsageFile> files;
};

UsageFile readUsageFile(const std::string& path, QLHalvoEnvironment environment, const std::string& distinctID) {
  UsageFile file;
  file.path = path;
  if (!FileManager::fileExistsAtPath(path)) return file;
  Result<std::string> bytes = FileManager::readAtPath(path, limits::kUsageFileBytes);
  if (!bytes) {
    file.problem = bytes.error();
    return file;
  }
  Result<std::vector<MixpanelAggregatedCueEvent>> records = decodeAggregatedCueEvents(std::move(*bytes));
  if (!records) {
    file.problem = records.error();
    return file;
  }
  file.records = std::move(*records);
  if (!file.records.empty())
    file.body =
        MixpanelAnalyticsServiceProvider::buildRequestBody(file.records, environment, NSDate::now(), distinctID);
  return file;
}

// As a controller would choose them. Looking for downloaded ones makes the Library, so it is done only when there is
// one.
QLHalvoAnalyticsInfo currentSettings(bool libraryExists) {
  std::string path;
  std::optional<std::string> json;
  if (libraryExists)
    json = HalvoFileManager::versionConfigOrBuiltIn(path);
  else
    json = FileManager::contentsAtPath(NSBundle::library().bundlePath() + "/" + kVersionConfigFile);
  if (!json) return {};
  const auto entries = decodeVersionConfigs(std::move(*json));
  if (!entries) return {};
  const auto entry = selectForSdkVersion(*entries, HalvoUtility::sdkVersion());
  return entry ? entry->analytics.value_or(QLHalvoAnalyticsInfo{}) : QLHalvoAnalyticsInfo{};
}

Usage look(const std::string& library, QLHalvoEnvironment environment) {
  const bool exists = FileManager::directoryExistsAtPath(library);
  Usage usage{library, currentSettings(exists), std::nullopt, {}};
  if (exists) usage.distinctID = MixpanelAnalyticsServiceProvider::storedDistinctID();
  for (const char* name : {MixpanelAnalyticsData::kCurrentFile, MixpanelAnalyticsData::kFailedFile})
    usage.files.push_back(readUsageFile(library + name, environment, usage.distinctID.value_or(kNoDistinctID)));
  return usage;
}

void writeText(JSONWriter& writer, const char* key, const std::optional<std::string>& text) {
  writer.key(key);
  if (text)
    writer.string(*text);
  else
    writer.null();
}

void printJSON(const Usage& usage) {
  JSONWriter writer;
  writer.beginObject()
      .key("library")
      .string(usage.directory)
      .key("enabled")
      .boolean(usage.settings.enabled.value_or(false));
  writeText(writer, "frequency", usage.settings.frequency);
  writeText(writer, "url", usage.settings.url);
  writeText(writer, "distinctId", usage.distinctID);
  writer.key("files").beginArray();
  for (const UsageFile& file : usage.files) {
    writer.beginObject().key("path").string(file.path);
    writeText(writer, "problem", file.problem ? std::optional(file.problem->localizedDescription) : std::nullopt);
    writer.key("records").raw(encodeAggregatedCueEvents(file.records));
    writeText(writer, "body", file.body);
    writer.endObject();
  }
  std::puts(writer.endArray().endObject().text().c_str());
}

// Control characters of stored text would act on the terminal.
std::string shown(const std::string& text) { return JSONWriter().string(text).take(); }

void printRecord(const MixpanelAggregatedCueEvent& record) {
  const MixpanelAggregatedCueEventProperties& counts = record.properties;
  const std::pair<const char*, std::int64_t> failures[] = {
      {"animation and sound failed", counts.animationAndSoundFailureCount},
      {"animation failed", counts.animationFailureCount},
      {"sound failed", counts.soundFailureCount},
      {"rejected or unknown", counts.unknownFailureCount},
      {"muted", counts.mutedPlayCount},
      {"with haptics", counts.hapticsPlayCount},
  };
  std::printf("  %s version %s for %s: %lld play%s, %lld fine, %lld failed", shown(counts.cueName).c_str(),
              shown(counts.cueVersion).c_str(), shown(counts.merchant->merchantName).c_str(),
              static_cast<long long>(counts.totalCount), counts.totalCount == 1 ? "" : "s",
              static_cast<long long>(counts.successCount), static_cast<long long>(counts.failureCount));
  for (const auto& [name, count] : failures)
    if (count > 0) std::printf("; %s: %lld", name, static_cast<long long>(count));
  std::printf("\n    from %s to %s\n", networkTimeText(counts.startDate).c_str(),
              networkTimeText(counts.endDate).c_str());
}

void printReadably(const Usage& usage) {
  const QLHalvoAnalyticsInfo& settings = usage.settings;
  std::printf("Usage stored in %s\n", usage.directory.c_str());
  std::printf("Counting is %s; reported %s to %s\n", settings.enabled.value_or(false) ? "on" : "off",
              settings.frequency == "M" ? "monthly" : "quarterly",
              settings.url.value_or("").empty() ? "nobody: there is no address" : shown(*settings.url).c_str());
  std::printf("Distinct id: %s\n", usage.distinctID ? shown(*usage.distinctID).c_str() : kNoDistinctID);
  for (const UsageFile& file : usage.files) {
    std::printf("\n%s: %zu %s\n", file.path.c_str(), file.records.size(),
                file.records.size() == 1 ? "record" : "records");
    if (file.problem)
      std::printf("  cannot be read, counts as empty: %s\n", file.problem->localizedDescription.c_str());
    for (const MixpanelAggregatedCueEvent& record : file.records) printRecord(record);
    if (file.body) std::printf("  would be sent as:\n  %s\n", file.body->c_str());
  }
}

}  // namespace

int usage(int argc, char** argv) {
  bool json = false;
  QLHalvoEnvironment environment = QLHalvoEnvironment::primary;

  CommandLine commandLine;
  commandLine.usage = "usage [options]";
  commandLine.summary =
      "Prints the usage records that are stored, and what would be sent. Sends nothing and makes nothing.\n"
      "Exit status: 0, or 1 when a file of records cannot be read.";
  commandLine.options = {
      {"environment", "NAME", "primary or secondary: whose token is shown (primary)",
       [&](const std::string& name) { return chooseEnvironment(name, environment); }},
      {"json", "", "one line of JSON", setFlag(json)},
  };
  addHostOptions(commandLine);
  const Parsed parsed = parse(commandLine, argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;
  const std::optional<std::string> library = libraryDirectoryPath();
  if (!library) return failure("there is no Library directory: neither XDG_DATA_HOME nor HOME is set");

  const Usage found = look(*library, environment);
  json ? printJSON(found) : printReadably(found);
  for (const UsageFile& file : found.files)
    if (file.problem) return kExitFailure;
  return kExitFine;
}

}  // namespace halvo
