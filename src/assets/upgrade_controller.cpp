#include "assets/upgrade_controller.h"

#include <algorithm>
#include <atomic>
#include <utility>

#include "assets/halvo_file_manager.h"
#include "assets/halvo_utility.h"
#include "assets/http_manager.h"
#include "platform/dispatch/clock.h"
#include "platform/foundation/console.h"
#include "platform/foundation/network/url.h"
#include "platform/foundation/storage/bundle.h"
#include "platform/foundation/storage/file_manager.h"

namespace quellaro {

namespace {

constexpr double kSecondsBetweenFetches = 604800.0;
constexpr const char* kBaseAddressKey = "versionConfigUrl";

void printLine(const std::string& text) { print("QuellaroHalvo: " + text); }

void complainOnce(const std::string& problem) {
  static std::atomic<bool> done = false;
  if (!done.exchange(true)) logToStandardError("no upgrades: " + problem);
}

// Nothing when there is none, which is a matter of choice, or when it cannot be used, which the operator is told.
std::optional<std::string> baseAddress() {
  const std::optional<JSONValue> entry = NSBundle::library().objectForInfoDictionaryKey(kBaseAddressKey);
  if (!entry) return std::nullopt;
  const std::optional<std::string_view> text = entry->string();
  if (!text || text->empty()) {
    complainOnce("the bundle's \"versionConfigUrl\" is not an address");
    return std::nullopt;
  }
  std::string address(*text);
  if (NSURL::fromString(address + "/" + kVersionConfigFile)) return address;
  complainOnce("the bundle's \"versionConfigUrl\" is not a valid address: " + address);
  return std::nullopt;
}

bool isComplete(const std::string& directory) {
  return std::all_of(kCueFiles.begin(), kCueFiles.end(),
                     [&](const char* file) { return FileManager::fileExistsAtPath(directory + "/" + file); });
}

std::string describeOptional(const std::optional<NSError>& error) {
  return error ? "Optional(" + error->description() + ")" : "nil";
}

}  // namespace

std::shared_ptr<QLUpgradeController> QLUpgradeController::make() {
  return std::shared_ptr<QLUpgradeController>(new QLUpgradeController);
}

void QLUpgradeController::checkForUpgrade() {
  const std::optional<std::string> base = baseAddress();
  if (!base) return;
  const auto check = std::make_shared<Check>(
      Check{.baseAddress = *base, .cue = preparingHalvoCue_.value_or(""), .stagingDirectory = {}, .source = {}});
  const auto group = std::make_shared<DispatchGroup>();
  group->enter();
  didRemoteUpgradeFound_ = false;
  if (HalvoUtility::lastUpgradeTime() + kSecondsBetweenFetches < secondsSince1970())
    fetchVersionConfig(check, group);
  else
    processLocalVersionConfig(check, group);
  group->notify(MainQueue::shared(), [weak = weak_from_this(), check] {
    const auto self = weak.lock();
    if (self && self->canActivate(*check)) self->activateDownloadedAssets(*check);
  });
}

void QLUpgradeController::discardActiveCueAssets() {
  if (!preparingHalvoCue_) return;
  // A cue that can have no directory of its own has nothing to discard.
  const std::optional<std::string> directory = HalvoFileManager::activeDirectory(*preparingHalvoCue_);
  if (!directory) return;
  HalvoUtility::setCueVersion(*preparingHalvoCue_, "");
  HalvoFileManager::removeDirectoryIfExists(*directory);
}

void QLUpgradeController::fetchVersionConfig(const CheckPointer& check, const GroupPointer& group) {
  const std::optional<NSURL> url = NSURL::fromString(check->baseAddress + "/" + kVersionConfigFile);
  QLHalvoHttpManager::request(*url, "GET", std::nullopt, {}, nullptr,
                              [weak = weak_from_this(), check, group](std::optional<std::string> data, const auto&,
                                                                      const std::optional<NSError>& error) {
                                if (const auto self = weak.lock())
                                  self->receiveVersionConfig(check, group, std::move(data), error);
                              });
}

void QLUpgradeController::receiveVersionConfig(const CheckPointer& check, const GroupPointer& group,
                                               std::optional<std::string> data, const std::optional<NSError>& error) {
  if (error || !data || data->empty()) {
    printLine("version config download failed due to " + describeOptional(error));
    processLocalVersionConfig(check, group);
    return;
  }
  prepareDirectories(check->cue);
  // Never into the bundle, even when the active root could not be made.
  const std::optional<std::string> root = HalvoFileManager::activeRoot();
  if (!root || FileManager::writeAtomically(*data, *root + "/" + kVersionConfigFile)) {
    printLine("version config saving failed");
    processLocalVersionConfig(check, group);
    return;
  }
  processVersionConfig(std::move(*data), check, group);
}

void QLUpgradeController::processLocalVersionConfig(const CheckPointer& check, const GroupPointer& group) {
  std::optional<std::string> json =
      FileManager::contentsAtPath(HalvoFileManager::assetsDirectoryPath(std::nullopt) + "/" + kVersionConfigFile);
  // Without a copy the check stays unfinished, and without a time stamp the next one asks the store again.
  if (json) processVersionConfig(std::move(*json), check, group);
}

void QLUpgradeController::processVersionConfig(std::string json, const CheckPointer& check, const GroupPointer& group) {
  std::optional<Source> source;
  const Result<std::vector<QLHalvoVersionConfig>> entries = decodeVersionConfigs(std::move(json));
  if (entries) {
    if (auto entry = selectForSdkVersion(*entries, HalvoUtility::sdkVersion())) halvoVersionConfig_ = std::move(entry);
    source = evaluateCueUpgrade(check->cue);
  } else {
    printLine("Failed to load: " + entries.error().localizedDescription);
  }
  startAssetDownload(source, check, group);
  HalvoUtility::setLastUpgradeTime(secondsSince1970());
}

// What is to be installed, if anything is.
std::optional<QLUpgradeController::Source> QLUpgradeController::evaluateCueUpgrade(const std::string& cue) const {
  if (!halvoVersionConfig_ || !halvoVersionConfig_->cues) return std::nullopt;
  const auto found = halvoVersionConfig_->cues->find(cue);
  if (found == halvoVersionConfig_->cues->end()) {
    printLine(cue + " cue is not present");
    return std::nullopt;
  }
  const std::string version = found->second.version.value_or("");
  if (version == HalvoUtility::cueVersion(cue)) {
    printLine(cue + " cue version " + version + " is up to date");
    return std::nullopt;
  }
  return Source{version, found->second.filepath.value_or("")};
}

void QLUpgradeController::prepareDirectories(const std::string& cue) {
  const std::optional<std::string> root = HalvoFileManager::activeRoot();
  if (!root) return;
  if (const std::optional<std::string> staging = HalvoFileManager::stagingDirectory(cue)) {
    halvoAssetsDirectoryPath_ = *staging;
    HalvoFileManager::createDirectoryIfNeeded(*staging);
  }
  HalvoFileManager::createDirectoryIfNeeded(*root);
}

void QLUpgradeController::startAssetDownload(const std::optional<Source>& source, const CheckPointer& check,
                                             const GroupPointer& group) {
  // A cue that can have no directory of its own is not upgraded.
  const std::optional<std::string> staging = HalvoFileManager::stagingDirectory(check->cue);
  if (source && staging) {
    prepareDirectories(check->cue);
    check->source = *source;
    check->stagingDirectory = *staging;
    latestSources_[check->cue] = *source;
    didRemoteUpgradeFound_ = true;
    didAssetDownloadFailed_ = false;
    printLine("New halvo update found download started");
    for (const char* fileName : kCueFiles)
      downloadAsset(check->baseAddress + "/" + source->filepath, fileName, check, group);
  }
  group->leave();
}

void QLUpgradeController::downloadAsset(const std::string& cueAddress, const std::string& fileName,
                                        const CheckPointer& check, const GroupPointer& group) {
  const std::optional<NSURL> url = NSURL::fromString(cueAddress + "/" + fileName);
  if (!url) {
    receiveAsset(fileName, std::nullopt, *check);
    return;
  }
  group->enter();
  QLHalvoHttpManager::request(*url, "GET", std::nullopt, {}, nullptr,
                              [weak = weak_from_this(), fileName, check, group](const std::optional<std::string>& data,
                                                                                const auto&, const auto& error) {
                                if (const auto self = weak.lock())
                                  self->receiveAsset(fileName, error ? std::nullopt : data, *check);
                                group->leave();
                              });
}

void QLUpgradeController::receiveAsset(const std::string& fileName, const std::optional<std::string>& data,
                                       Check& check) {
  // A later check may have begun to fetch other assets into the same directory: the two must not mix.
  const bool isWanted = latestSources_[check.cue] == check.source;
  if (isWanted && data && !data->empty() &&
      !FileManager::writeAtomically(*data, check.stagingDirectory + "/" + fileName))
    return;
  check.hasFailedFile = true;
  if (isWanted) didAssetDownloadFailed_ = true;
}

// Whether this check has collected all that it wanted, and nobody else has installed it in the meantime.
bool QLUpgradeController::canActivate(const Check& check) const {
  return didRemoteUpgradeFound_ && !didAssetDownloadFailed_ && !check.hasFailedFile &&
         !check.stagingDirectory.empty() && latestSources_.at(check.cue) == check.source &&
         isComplete(check.stagingDirectory);
}

void QLUpgradeController::activateDownloadedAssets(const Check& check) {
  const std::optional<std::string> active = HalvoFileManager::activeDirectory(check.cue);
  if (!active) return;
  FileManager::removeUnfinishedWrites(check.stagingDirectory);
  HalvoFileManager::removeDirectoryIfExists(*active);
  HalvoFileManager::moveItem(check.stagingDirectory, *active);
  HalvoUtility::setCueVersion(check.cue, check.source.version);
  printLine("New halvo upgraded successfully");
  didRemoteUpgradeSuccessful_ = true;
}

}  // namespace quellaro
