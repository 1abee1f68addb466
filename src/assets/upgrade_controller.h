#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "assets/cue_sets.h"
#include "assets/upgrade_controlling.h"
#include "assets/version_config.h"
#include "platform/dispatch/function.h"
#include "platform/foundation/error.h"
#include "platform/foundation/network/received_body.h"
#include "platform/foundation/network/url.h"

namespace quellaro {

// Replaces a cue's assets with a newer set from the remote asset store. The store is asked at most once in seven days;
// in between, the copy of its answer on the device is read again. The four files of a newer cue are collected in the
// staging directory, which becomes the active directory once all of them have arrived. Until then, and whenever
// anything goes wrong, memory that runs out too, the cue plays what it played before. Main thread; requests outlive the
// object and then change nothing.
class QLUpgradeController final : public UpgradeControlling, public std::enable_shared_from_this<QLUpgradeController> {
 public:
  static std::shared_ptr<QLUpgradeController> make();

  void setPreparingHalvoCue(const std::string& cueName) override { preparingHalvoCue_ = cueName; }
  void checkForUpgrade() override;
  FileLock beginReading(const std::string& cueName) override;
  void discardActiveCueAssets() override;
  bool didRemoteUpgradeFound() const override { return didRemoteUpgradeFound_; }
  bool didRemoteUpgradeSuccessful() const override { return didRemoteUpgradeSuccessful_; }

  // The staging directory of the cue that was last looked at; empty before.
  const std::string& halvoAssetsDirectoryPath() const { return halvoAssetsDirectoryPath_; }
  // At least one file of the download that was last begun did not arrive.
  bool didAssetDownloadFailed() const { return didAssetDownloadFailed_; }
  // What the store says about the running version of the library, as last understood.
  const std::optional<QLHalvoVersionConfig>& halvoVersionConfig() const { return halvoVersionConfig_; }

 private:
  // Which assets a download fetches.
  struct Source {
    std::string version;
    std::string filepath;
    friend bool operator==(const Source&, const Source&) = default;
  };
  // One check, with its requests, which hold it: the next one may begin, for another cue too, before this one has
  // ended.
  struct Check {
    std::string baseAddress;
    std::string cue;
    Source source;
    // What was installed when the download began.
    std::string replacedVersion;
    std::optional<CueSets::Staged> staged;
    bool hasFailedFile = false;
    // The check itself and each of its files.
    int outstanding = 1;
  };
  using CheckPointer = std::shared_ptr<Check>;
  using Receiver = Function<void(std::optional<std::string> data, const std::optional<NSError>& error)>;

  QLUpgradeController() = default;
  void beginCheck();
  void fetch(const NSURL& url, BodyBounds bounds, Receiver receive);
  void receiveVersionConfig(const CheckPointer& check, std::optional<std::string> data,
                            const std::optional<NSError>& error);
  void processLocalVersionConfig(const CheckPointer& check);
  void processVersionConfig(std::string json, const CheckPointer& check);
  std::optional<Source> evaluateCueUpgrade(const std::string& cue) const;
  void prepareDirectories(const std::string& cue);
  void startAssetDownload(const Source& source, const CheckPointer& check);
  void downloadAsset(const std::string& fileName, const CheckPointer& check);
  void receiveAsset(const std::string& fileName, std::optional<std::string> data, Check& check);
  void endPart(const CheckPointer& check);
  bool canActivate(const Check& check) const;
  void activateDownloadedAssets(Check& check);

  std::string halvoAssetsDirectoryPath_;
  bool didRemoteUpgradeFound_ = false;
  bool didRemoteUpgradeSuccessful_ = false;
  bool didAssetDownloadFailed_ = false;
  std::optional<std::string> preparingHalvoCue_;
  std::optional<QLHalvoVersionConfig> halvoVersionConfig_;
  // Of each cue, what the download that was last begun fetches.
  std::map<std::string, Source> latestSources_;
  // What was read last, and which set that was.
  std::string readCue_;
  std::optional<CueSets::Identity> readSet_;
};

}  // namespace quellaro
