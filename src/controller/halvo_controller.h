#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "types/component_status.h"
#include "types/halvo_enums.h"
#include "types/halvo_status.h"
#include "types/merchant.h"

namespace quellaro {

class AnalyticsManaging;
class DispatchGroup;
struct HalvoCollaborators;
class HapticsManagerProtocol;
class QLHalvoControllerProtocol;
struct QLHalvoSDKConfig;
class QLHalvoSoundProtocol;
struct QLHalvoVersionConfig;
class QLHalvoView;
class UpgradeControlling;

// Receives the answer of a prepare or a play; may be empty.
using HalvoCompletion = std::function<void(QLHalvoStatus)>;

// The one object a host drives: prepare a cue once, then play it as often as it is to be shown. Main thread only; a
// prepare must not overlap a play. The host holds it by a shared pointer. Dropped during a prepare, it answers nothing;
// a play keeps it until the play has ended.
class QLHalvoController : public std::enable_shared_from_this<QLHalvoController> {
 public:
  using Status = ComponentStatus;

  static std::shared_ptr<QLHalvoController> make();
  // With others in the place of its players, its upgrades, its haptics and its analytics.
  static std::shared_ptr<QLHalvoController> make(HalvoCollaborators collaborators);

  // prepareWith:halvoCue:halvoEnvironment:merchant:isHapticsEnabled:completion:
  // Loads the cue's configuration and assets, then answers 800, 901, 902, 903 or 909, once, on the main queue; a cue
  // that is prepared already is answered with 800 inside this call. Cue names that differ only in "_", "-", blanks and
  // letter case name one cue. Afterwards looks for a newer version of the cue, which a later play picks up.
  void prepare(QLHalvoType type, const std::string& halvoCue, QLHalvoEnvironment environment,
               std::shared_ptr<const QLHalvoMerchant> merchant, bool isHapticsEnabled, HalvoCompletion completion);

  // playWith:completion:
  // Plays the prepared cue, its animation in the view. Answers 904 or 908 inside this call; everything else, once, on
  // the main queue when the last part has ended. The next play may start when the completion has returned.
  void play(std::shared_ptr<QLHalvoView> view, HalvoCompletion completion);

  // preparedHalvoCue, setPreparedHalvoCue:
  // Normalised name of the cue of the last successful prepare.
  const std::optional<std::string>& preparedHalvoCue() const { return preparedHalvoCue_; }
  void setPreparedHalvoCue(std::optional<std::string> cue) { preparedHalvoCue_ = std::move(cue); }
  // isPlaying, setIsPlaying: from the start of a play until its completion has returned.
  bool isPlaying() const { return isPlaying_; }
  void setIsPlaying(bool isPlaying) { isPlaying_ = isPlaying; }

 private:
  explicit QLHalvoController(HalvoCollaborators collaborators);

  void runPrepareSequence(QLHalvoType type, HalvoCompletion completion);
  bool isPreparedAlready() const;
  bool loadVersionConfig();
  bool loadPlayConfig();
  void preparePlayer(QLHalvoControllerProtocol* player, Status QLHalvoController::*status,
                     const std::shared_ptr<DispatchGroup>& group);
  void prepareHaptics(const std::shared_ptr<DispatchGroup>& group);
  void finishPrepare(const HalvoCompletion& completion);
  std::optional<QLHalvoStatus> failedPrepareCode() const;

  void playAfterUpgrade(std::shared_ptr<QLHalvoView> view, HalvoCompletion completion);
  void runPlaySequence(std::shared_ptr<QLHalvoView> view, HalvoCompletion completion);
  // A player whose view is absent (rather than null: the sound has none) fails when its turn comes.
  void schedulePlayer(QLHalvoControllerProtocol* player, Status QLHalvoController::*status, double delayInMillis,
                      std::optional<std::shared_ptr<QLHalvoView>> view, const std::shared_ptr<DispatchGroup>& group);
  void finishPlay(const HalvoCompletion& completion);
  void recordRejectedPlay();

  QLHalvoControllerProtocol* animationController();
  QLHalvoSoundProtocol* audioController();
  UpgradeControlling* upgradeController();
  std::function<void(const Status&)> hapticsStatusWriter();
  // Every assignment also hands the entry's analytics settings, or none, to the analytics manager.
  void setVersionConfig(std::shared_ptr<const QLHalvoVersionConfig> config);

  std::shared_ptr<const HalvoCollaborators> collaborators_;
  std::shared_ptr<QLHalvoControllerProtocol> animationController_;
  std::shared_ptr<QLHalvoSoundProtocol> audioController_;
  std::shared_ptr<UpgradeControlling> upgradeController_;
  Status soundStatus_ = Status::Not_Ready;
  Status animationStatus_ = Status::Not_Ready;
  Status hapticsStatus_ = Status::Not_Ready;
  Status playConfigStatus_ = Status::Not_Ready;
  Status versionConfigStatus_ = Status::Not_Ready;
  // Set while a play prepares again after an upgrade: the prepare is then done in full.
  bool shouldReprepareAssets_ = false;
  std::shared_ptr<const QLHalvoSDKConfig> sdkConfig_;
  std::shared_ptr<const QLHalvoMerchant> merchant_;
  std::optional<QLHalvoEnvironment> halvoEnvironment_;
  std::optional<QLHalvoType> halvoType_;
  std::shared_ptr<const QLHalvoVersionConfig> halvoVersionConfig_;
  // Cleared by the first retry, for the controller's life.
  bool retryOnPrepareFailure_ = true;
  // The chosen version configuration names the cue.
  bool isPreparedHalvoCueValid_ = false;
  std::optional<std::string> preparingHalvoCue_;
  std::optional<std::string> preparedHalvoCue_;
  std::shared_ptr<AnalyticsManaging> mixpanelAnalyticsManager_;
  std::optional<std::string> halvoCueVersion_;
  std::shared_ptr<HapticsManagerProtocol> hapticsManager_;
  std::optional<bool> isHapticsEnabled_;
  bool isPlaying_ = false;
};

}  // namespace quellaro
