#include "assets/upgrade_controller.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <utility>

#include "assets/halvo_file_manager.h"
#include "assets/halvo_utility.h"
#include "assets/http_manager.h"
#include "platform/dispatch/clock.h"
#include "platform/dispatch/main_queue.h"
#include "platform/foundation/console.h"
#include "platform/foundation/memory/limits.h"
#include "platform/foundation/storage/bundle.h"
#include "platform/foundation/storage/file_manager.h"

namespace quellaro {

namespace {

constexpr double kSecondsBetweenFetches = 604800.0;
constexpr const char* kBaseAddressKey = "versionConfigUrl";

void printLine(const std::string& text) { print("QuellaroHalvo: " + text); }

void complainOnce(const std::string& problem) {
  static std::atomic<bool> done = false;
  if (!done.exchange(true)) logLine(LogLevel::Warning, "no upgrades: " + problem);
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

// What is left undone for want of memory is done by a later check.
template <class Work>
void unlessMemoryIsShort(const Work& work) {
  try {
    work();
  } catch (const std::bad_alloc&) {
    return;
  }
}

// What is larger, no player reads.
std::size_t mostBytesOf(std::string_view fileName) {
  return fileName == kAnimationFile ? limits::kCueBytes
         : fileName == kSoundFile   ? limits::kSoundFileBytes
                                    : limits::kResponseBytes;
}

std::string describeOptional(const std::optional<NSError>& error) {
  return error ? "Optional(" + error->description() + ")" : "nil";
}

}  // namespace

std::shared_ptr<QLUpgradeController> QLUpgradeController::make() {
  return std::shared_ptr<QLUpgradeController>(new QLUpgradeController);
}

void QLUpgradeController::checkForUpgrade() {
  unlessMemoryIsShort([this] { beginCheck(); });
}

void QLUpgradeController::beginCheck() {
  const std::optional<std::string> base = baseAddress();
  if (!base) return;
  const auto check = std::make_shared<Check>();
  check->baseAddress = *base;
  check->cue = preparingHalvoCue_.value_or("");
  didRemoteUpgradeFound_ = false;
  CueSets::mend(check->cue);
  if (HalvoUtility::lastUpgradeTime() + kSecondsBetweenFetches < secondsSince1970()) {
    // The base is known to give an address.
    fetch(*NSURL::fromString(check->baseAddress + "/" + kVersionConfigFile), {limits::kVersionConfigBytes, ""},
          [this, check](std::optional<std::string> data, const std::optional<NSError>& error) {
            receiveVersionConfig(check, std::move(data), error);
          });
  } else {
    processLocalVersionConfig(check);
  }
}

FileLock QLUpgradeController::beginReading(const std::string& cueName) {
  // Where nothing is ever installed no file is made.
  const std::optional<std::string> root = HalvoFileManager::activeRoot();
  if (!root ||
      (!NSBundle::library().objectForInfoDictionaryKey(kBaseAddressKey) && !FileManager::fileExistsAtPath(*root)))
    return {};
  std::optional<FileLock> lock = CueSets::lock(FileLock::Kind::Shared);
  readSet_ = CueSets::identityOf(cueName);
  readCue_ = cueName;
  return lock ? std::move(*lock) : FileLock();
}

void QLUpgradeController::discardActiveCueAssets() {
  if (!preparingHalvoCue_) return;
  // A cue that can have no directory of its own has nothing to discard.
  if (!HalvoFileManager::activeDirectory(*preparingHalvoCue_)) return;
  const std::optional<FileLock> lock = CueSets::lock(FileLock::Kind::Exclusive);
  if (!lock || (readCue_ == *preparingHalvoCue_ && readSet_ != CueSets::identityOf(readCue_))) return;
  HalvoUtility::setCueVersion(*preparingHalvoCue_, "");
  CueSets::discard(*preparingHalvoCue_);
}

// The receiver is called while this exists.
void QLUpgradeController::fetch(const NSURL& url, BodyBounds bounds, Receiver receive) {
  QLHalvoHttpManager::request(
      url, "GET", std::nullopt, {}, nullptr,
      [weak = weak_from_this(), receive = std::move(receive)](std::optional<std::string> data, const auto&,
                                                              const std::optional<NSError>& error) {
        const auto self = weak.lock();
        if (self) unlessMemoryIsShort([&] { receive(std::move(data), error); });
      },
      std::move(bounds));
}

void QLUpgradeController::receiveVersionConfig(const CheckPointer& check, std::optional<std::string> data,
                                               const std::optional<NSError>& error) {
  if (error || !data || data->empty()) {
    printLine("version config download failed due to " + describeOptional(error));
    processLocalVersionConfig(check);
    return;
  }
  prepareDirectories(check->cue);
  // Never into the bundle, even when the active root could not be made.
  const std::optional<std::string> root = HalvoFileManager::activeRoot();
  if (!root || FileManager::writeAtomically(*data, *root + "/" + kVersionConfigFile)) {
    printLine("version config saving failed");
    processLocalVersionConfig(check);
    return;
  }
  processVersionConfig(std::move(*data), check);
}

void QLUpgradeController::processLocalVersionConfig(const CheckPointer& check) {
  std::string path;
  std::optional<std::string> json = HalvoFileManager::versionConfig(path);
  // Without a copy the check stays unfinished, and without a time stamp the next one asks the store again.
  if (json) processVersionConfig(std::move(*json), check);
}

void QLUpgradeController::processVersionConfig(std::string json, const CheckPointer& check) {
  std::optional<Source> source;
  const Result<std::vector<QLHalvoVersionConfig>> entries = decodeVersionConfigs(std::move(json));
  if (entries) {
    if (auto entry = selectForSdkVersion(*entries, HalvoUtility::sdkVersion())) halvoVersionConfig_ = std::move(entry);
    source = evaluateCueUpgrade(check->cue);
  } else {
    printLine("Failed to load: " + entries.error().localizedDescription);
  }
  if (source) startAssetDownload(*source, check);
  endPart(check);
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

void QLUpgradeController::startAssetDownload(const Source& source, const CheckPointer& check) {
  {
    // Not to be had: another process is stopped in the middle of an installation, and a later check comes.
    const std::optional<FileLock> lock = CueSets::lock(FileLock::Kind::Exclusive);
    if (!lock) return;
    check->replacedVersion = HalvoUtility::cueVersion(check->cue);
    if (check->replacedVersion == source.version) return;
    // A cue that can have no directory of its own is not upgraded.
    if (HalvoFileManager::stagingDirectory(check->cue)) prepareDirectories(check->cue);
    check->staged = CueSets::stage(check->cue);
    if (!check->staged) return;
  }
  check->source = source;
  latestSources_[check->cue] = source;
  didRemoteUpgradeFound_ = true;
  didAssetDownloadFailed_ = false;
  printLine("New halvo update found download started");
  for (const char* fileName : kCueFiles) downloadAsset(fileName, check);
}

void QLUpgradeController::downloadAsset(const std::string& fileName, const CheckPointer& check) {
  const std::optional<NSURL> url =
      NSURL::fromString(check->baseAddress + "/" + check->source.filepath + "/" + fileName);
  if (!url) {
    receiveAsset(fileName, std::nullopt, *check);
    return;
  }
  ++check->outstanding;
  fetch(*url, {mostBytesOf(fileName), check->staged->directory},
        [this, fileName, check](std::optional<std::string> data, const std::optional<NSError>& error) {
          if (error) data.reset();
          receiveAsset(fileName, std::move(data), *check);
          endPart(check);
        });
}

void QLUpgradeController::receiveAsset(const std::string& fileName, std::optional<std::string> data, Check& check) {
  if (data && !data->empty() && !FileManager::writeAtomically(*data, check.staged->directory + "/" + fileName)) return;
  check.hasFailedFile = true;
  if (latestSources_[check.cue] == check.source) didAssetDownloadFailed_ = true;
}

void QLUpgradeController::endPart(const CheckPointer& check) {
  if (--check->outstanding > 0) return;
  MainQueue::shared().async([weak = weak_from_this(), check] {
    unlessMemoryIsShort([&] {
      const auto self = weak.lock();
      if (self && self->canActivate(*check)) self->activateDownloadedAssets(*check);
    });
  });
}

// Whether this check has collected all that it wanted, and wants what is wanted still.
bool QLUpgradeController::canActivate(const Check& check) const {
  return didRemoteUpgradeFound_ && !didAssetDownloadFailed_ && !check.hasFailedFile && check.staged &&
         latestSources_.at(check.cue) == check.source && isComplete(check.staged->directory);
}

void QLUpgradeController::activateDownloadedAssets(Check& check) {
  const std::optional<FileLock> lock = CueSets::lock(FileLock::Kind::Exclusive);
  if (!lock) return;
  const std::string installed = HalvoUtility::cueVersion(check.cue);
  // An empty version is that of a set that has been discarded.
  if (installed == check.replacedVersion || installed.empty() || !CueSets::identityOf(check.cue)) {
    CueSets::install(*check.staged, check.cue);
    HalvoUtility::setCueVersion(check.cue, check.source.version);
  } else {
    // Another process was faster; with another version, if the store has moved on meanwhile.
    HalvoFileManager::removeDirectoryIfExists(check.staged->directory);
    if (installed != check.source.version) return;
  }
  printLine("New halvo upgraded successfully");
  didRemoteUpgradeSuccessful_ = true;
}

}  // namespace quellaro
