#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dispatch/function.h"
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
using HalvoCompletion = Function<void(QLHalvoStatus)>;

// The one object a host drives: prepare a cue once, then play it as often as it is to be shown. Main thread only. The
// host holds it by a shared pointer. Dropped during a prepare, it answers nothing; a play keeps it until the play has
// ended. Of prepares that overlap the last one counts, and its answer is that of all; of a play that a prepare
// overtakes, the sound breaks off and what has not begun yet fails.
//
// A completion may call anything here, drop the last reference, or throw; what it throws comes out of the call that it
// was called from, which is prepare(), play() or the main queue's. When memory is short, prepare() and play() throw
// std::bad_alloc, and then call no completion. In a child that was forked after the main queue's first use they answer
// 901 and 905 inside the call.
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

  // What was wrong with the last prepare or play, with the file and the place in it; empty when nothing was. A prepare
  // that succeeded after the cue's downloaded assets had been discarded tells what was wrong with those.
  const std::string& failureReason() const { return failureReason_; }
  // What became of the last sound that this has played to its end.
  QLHalvoSound lastSound() const;
  // Seconds from a play's beginning to its answer, as far as the cue decides; infinite when it never ends, and nothing
  // when no cue is prepared.
  std::optional<double> duration() const;

 private:
  // Where the parts of a cue stand.
  struct Parts {
    Status animation = Status::Not_Ready;
    Status sound = Status::Not_Ready;
    Status haptics = Status::Not_Ready;
  };
  // What the last prepare asked for; nothing before the first.
  struct Request {
    std::shared_ptr<const QLHalvoMerchant> merchant;
    std::optional<QLHalvoEnvironment> halvoEnvironment;
    std::optional<QLHalvoType> halvoType;
    std::optional<std::string> preparingHalvoCue;
    bool isHapticsEnabled = false;
  };
  struct Configuration {
    Status playConfigStatus = Status::Not_Ready;
    Status versionConfigStatus = Status::Not_Ready;
    std::shared_ptr<const QLHalvoSDKConfig> sdkConfig;
    std::shared_ptr<const QLHalvoVersionConfig> halvoVersionConfig;
    // The chosen version configuration names the cue.
    bool isPreparedHalvoCueValid = false;
    // What is wrong with the two files.
    std::string problem;
  };
  // What is under way. Their parts write into them, so that a call that comes in between cannot change their outcome.
  struct Prepare;
  struct Play;
  // By whom and for whom a play is counted.
  struct Account;

  explicit QLHalvoController(HalvoCollaborators collaborators);

  void request(Request next);
  void runPrepareSequence(HalvoCompletion completion);
  bool isPreparedAlready() const;
  bool loadVersionConfig();
  bool loadPlayConfig();
  // Notes what is wrong with a configuration. Gives false.
  bool isUnusable(std::string_view path, std::string_view problem);
  void prepareHaptics(const std::shared_ptr<Prepare>& prepare, const std::shared_ptr<DispatchGroup>& group);
  void checkForUpgrade();
  void finishPrepare(const std::shared_ptr<Prepare>& prepare);
  // Nothing when it goes on, or when there is nothing true to answer.
  std::optional<QLHalvoStatus> outcomeOf(const Prepare& prepare);
  std::optional<QLHalvoStatus> failedPrepareCode() const;
  void noteFailedPrepare();
  void noteFailedPlay(const Play& play);
  void addReason(std::string_view reason);
  void addHapticsReason(const Status& haptics);

  void playAfterUpgrade(std::shared_ptr<QLHalvoView> view, HalvoCompletion completion);
  // Starts the play and gives nothing, or gives why not.
  std::optional<QLHalvoStatus> runPlaySequence(const std::shared_ptr<QLHalvoView>& view,
                                               const HalvoCompletion& completion);
  // A player whose view is absent (rather than null: the sound has none) fails when its turn comes.
  void schedulePlayer(QLHalvoControllerProtocol* player, Status Parts::*status, double delayInMillis,
                      std::optional<std::shared_ptr<QLHalvoView>> view, const std::shared_ptr<Play>& play,
                      const std::shared_ptr<DispatchGroup>& group);
  void startHaptics(const Function<void(const Status&)>& setStatus, const std::shared_ptr<DispatchGroup>& group);
  void finishPlay(const Play& play, const HalvoCompletion& completion);
  Account account() const;
  void recordPlay(Account account, std::int64_t animationOutcome, const Status& haptics, bool supportsHaptics,
                  std::int64_t soundOutcome, bool isMuted);
  void recordRejectedPlay();

  QLHalvoControllerProtocol* animationController();
  QLHalvoSoundProtocol* audioController();
  UpgradeControlling* upgradeController();
  // Every assignment also hands the entry's analytics settings, or none, to the analytics manager.
  void setVersionConfig(std::shared_ptr<const QLHalvoVersionConfig> config);

  std::shared_ptr<const HalvoCollaborators> collaborators_;
  std::shared_ptr<QLHalvoControllerProtocol> animationController_;
  std::shared_ptr<QLHalvoSoundProtocol> audioController_;
  std::shared_ptr<UpgradeControlling> upgradeController_;
  std::shared_ptr<AnalyticsManaging> mixpanelAnalyticsManager_;
  std::shared_ptr<HapticsManagerProtocol> hapticsManager_;

  Request request_;
  Configuration configuration_;
  Parts parts_;
  std::optional<std::string> preparedHalvoCue_;
  std::optional<std::string> halvoCueVersion_;
  // The prepare that is under way, the last one if they are several.
  std::weak_ptr<Prepare> preparing_;
  std::weak_ptr<const Play> playing_;
  // Counts the times that the players have begun to load: what was loaded before is gone then.
  std::uint64_t loads_ = 0;
  // Set while a play prepares again after an upgrade: the prepare is then done in full.
  bool shouldReprepareAssets_ = false;
  // Such a play waits for its prepare.
  bool isPlayWaiting_ = false;
  // Cleared by the first retry, for the controller's life.
  bool retryOnPrepareFailure_ = true;
  bool isPlaying_ = false;
  std::string failureReason_;
};

}  // namespace quellaro
