#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "assets/upgrade_controlling.h"
#include "assets/version_config.h"
#include "platform/dispatch/group.h"
#include "platform/foundation/error.h"

namespace quellaro {

// Replaces a cue's assets with a newer set from the remote asset store. The store is asked at most once in seven days;
// in between, the copy of its answer on the device is read again. The four files of a newer cue are collected in the
// staging directory, which becomes the active directory once all of them have arrived. Until then, and whenever
// anything goes wrong, the cue plays what it played before. Main thread; requests outlive the object and then change
// nothing.
class QLUpgradeController final : public UpgradeControlling, public std::enable_shared_from_this<QLUpgradeController> {
 public:
  static std::shared_ptr<QLUpgradeController> make();

  void setPreparingHalvoCue(const std::string& cueName) override { preparingHalvoCue_ = cueName; }
  void checkForUpgrade() override;
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
  // What belongs to one check alone: the next one may begin, for another cue too, before this one has ended.
  struct Check {
    std::string baseAddress;
    std::string cue;
    std::string stagingDirectory;
    Source source;
    bool hasFailedFile = false;
  };
  using CheckPointer = std::shared_ptr<Check>;
  // Counts the check itself and each of its files. Whoever will leave it holds it, so that it goes, silently, with a
  // check that never ends.
  using GroupPointer = std::shared_ptr<DispatchGroup>;

  QLUpgradeController() = default;
  void fetchVersionConfig(const CheckPointer& check, const GroupPointer& group);
  void receiveVersionConfig(const CheckPointer& check, const GroupPointer& group, std::optional<std::string> data,
                            const std::optional<NSError>& error);
  void processLocalVersionConfig(const CheckPointer& check, const GroupPointer& group);
  void processVersionConfig(std::string json, const CheckPointer& check, const GroupPointer& group);
  std::optional<Source> evaluateCueUpgrade(const std::string& cue) const;
  void prepareDirectories(const std::string& cue);
  void startAssetDownload(const std::optional<Source>& source, const CheckPointer& check, const GroupPointer& group);
  void downloadAsset(const std::string& cueAddress, const std::string& fileName, const CheckPointer& check,
                     const GroupPointer& group);
  void receiveAsset(const std::string& fileName, const std::optional<std::string>& data, Check& check);
  bool canActivate(const Check& check) const;
  void activateDownloadedAssets(const Check& check);

  std::string halvoAssetsDirectoryPath_;
  bool didRemoteUpgradeFound_ = false;
  bool didRemoteUpgradeSuccessful_ = false;
  bool didAssetDownloadFailed_ = false;
  std::optional<std::string> preparingHalvoCue_;
  std::optional<QLHalvoVersionConfig> halvoVersionConfig_;
  // Of each cue, what the download that was last begun fetches into its staging directory.
  std::map<std::string, Source> latestSources_;
};

}  // namespace quellaro
