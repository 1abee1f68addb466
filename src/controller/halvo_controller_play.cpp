#include <string>
#include <utility>

#include "analytics/analytics_managing.h"
#include "assets/sdk_config.h"
#include "controller/cue_part.h"
#include "controller/halvo_collaborators.h"
#include "controller/halvo_controller.h"
#include "platform/dispatch/guard.h"
#include "platform/dispatch/main_queue.h"
#include "platform/foundation/console.h"

namespace quellaro {

namespace {

constexpr std::int64_t kFine = rawValueOf(QLHalvoStatus::success);
constexpr double kMillisPerSecond = 1000.0;
constexpr std::size_t kBannerWidth = 78;
constexpr std::string_view kNoMemory = "Out of memory";

// What a play has come to: the answer, if there is one, and what is counted for each part.
struct Outcome {
  std::optional<QLHalvoStatus> code;
  std::int64_t animation = kFine;
  std::int64_t sound = kFine;
};

// The first row that matches decides.
Outcome combine(const ComponentStatus& animation, const ComponentStatus& sound, const ComponentStatus& haptics,
                bool neverRetried) {
  using Status = ComponentStatus;
  const auto isDone = [](const Status& s) { return s.is(Status::Not_Required) || s.is(Status::Played); };
  const auto hasPart = [](const Status& s) {
    return s.is(Status::Not_Ready) || s.is(Status::Ready) || s.is(Status::Played);
  };
  const std::int64_t animationFailed = rawValueOf(QLHalvoStatus::animationPlayFailed);
  const std::int64_t soundFailed = rawValueOf(QLHalvoStatus::soundPlayFailed);

  if (isDone(animation) && isDone(sound) && isDone(haptics))
    return {neverRetried ? QLHalvoStatus::success : QLHalvoStatus::successWithFallback};
  if ((hasPart(animation) || (animation.is(Status::Not_Required) && hasPart(sound))) && !sound.is(Status::Error)) {
    // Otherwise a part has left without an outcome, and there is nothing true to answer.
    if (!haptics.is(Status::Error)) return {};
    return {QLHalvoStatus::hapticsPlayFailed};
  }
  if (hasPart(animation) && sound.is(Status::Error)) return {QLHalvoStatus::soundPlayFailed, kFine, soundFailed};
  if (animation.is(Status::Error) && hasPart(sound))
    return {QLHalvoStatus::animationPlayFailed, animationFailed, kFine};
  return {QLHalvoStatus::playFailed, animation.is(Status::Error) ? animationFailed : kFine,
          sound.is(Status::Error) ? soundFailed : kFine};
}

void printBanner(const std::string& cue) {
  const std::string stars(kBannerWidth, '*');
  print("\n\n" + stars);
  print("* Provided cue " + cue + " is not valid hence playing default cue *");
  print(stars + "\n\n");
}

}  // namespace

struct QLHalvoController::Play {
  Parts parts;
  // What loads_ was at its start.
  std::uint64_t load = 0;
  bool hasView = false;
  // It could not be begun: what has been scheduled does nothing.
  bool isCalledOff = false;
};

struct QLHalvoController::Account {
  std::optional<std::string> cueName;
  std::optional<std::string> cueVersion;
  std::optional<QLHalvoType> type;
  bool isHapticsEnabled = false;
  std::shared_ptr<const QLHalvoMerchant> merchant;
  std::optional<QLHalvoEnvironment> environment;
  std::optional<QLHalvoAnalyticsInfo> config;
};

void QLHalvoController::play(std::shared_ptr<QLHalvoView> view, HalvoCompletion completion) {
  if (MainQueue::isInherited()) {
    if (completion) completion(QLHalvoStatus::playFailed);
    return;
  }
  const bool isBusy = isPlaying_ || isPlayWaiting_;
  const UpgradeControlling* upgrade = isBusy ? nullptr : upgradeController();
  if (upgrade != nullptr && request_.halvoType && upgrade->didRemoteUpgradeFound() &&
      upgrade->didRemoteUpgradeSuccessful())
    return playAfterUpgrade(std::move(view), std::move(completion));
  const std::optional<QLHalvoStatus> code = runPlaySequence(view, completion);
  // Last: it may drop the last reference.
  if (code && completion) completion(*code);
}

// New assets have arrived since the last prepare: prepares them first.
void QLHalvoController::playAfterUpgrade(std::shared_ptr<QLHalvoView> view, HalvoCompletion completion) {
  shouldReprepareAssets_ = true;
  runPrepareSequence(
      [self = shared_from_this(), view = std::move(view), completion = std::move(completion)](QLHalvoStatus prepared) {
        self->isPlayWaiting_ = false;
        const bool isUsable = prepared == QLHalvoStatus::success || prepared == QLHalvoStatus::successWithFallback ||
                              prepared == QLHalvoStatus::hapticsPrepareFailed;
        std::optional<QLHalvoStatus> code = QLHalvoStatus::playFailed;
        attempt([&] {
          if (isUsable) {
            self->shouldReprepareAssets_ = false;
            code = self->runPlaySequence(view, completion);
          } else {
            self->upgradeController()->discardActiveCueAssets();
          }
        });
        if (code && completion) completion(*code);
      });
  isPlayWaiting_ = true;
}

std::optional<QLHalvoStatus> QLHalvoController::runPlaySequence(const std::shared_ptr<QLHalvoView>& view,
                                                                const HalvoCompletion& completion) {
  if (isPlaying_ || isPlayWaiting_) {
    recordRejectedPlay();
    attempt([this] { failureReason_ = "Another play is in progress"; });
    return QLHalvoStatus::alreadyPlaying;
  }
  for (Status* status : {&parts_.animation, &parts_.sound, &parts_.haptics})
    if (status->is(Status::Played)) *status = Status::Ready;
  const auto canPlay = [](const Status& s) { return s.is(Status::Not_Required) || s.is(Status::Ready); };
  const Configuration& configuration = configuration_;
  if (configuration.playConfigStatus.is(Status::Error) || configuration.versionConfigStatus.is(Status::Error) ||
      !canPlay(parts_.sound) || !canPlay(parts_.animation)) {
    // What went wrong before is why nothing is prepared.
    if (failureReason_.empty()) attempt([this] { failureReason_ = "Nothing is prepared"; });
    return QLHalvoStatus::notPrepared;
  }

  // Until the last line that can fail nothing has begun.
  const auto play = std::make_shared<Play>(Play{parts_, loads_, view != nullptr});
  const auto group = std::make_shared<DispatchGroup>();
  Undo callOff([&] { play->isCalledOff = true; });
  if (parts_.animation.is(Status::Ready))
    schedulePlayer(animationController(), &Parts::animation, configuration.sdkConfig->animationDelayInMillis,
                   view ? std::optional(view) : std::nullopt, play, group);
  if (parts_.sound.is(Status::Ready))
    schedulePlayer(audioController(), &Parts::sound, configuration.sdkConfig->soundDelayInMillis,
                   std::shared_ptr<QLHalvoView>(), play, group);
  const Function<void(const Status&)> setHaptics = [play](const Status& outcome) { play->parts.haptics = outcome; };
  const bool hasHaptics = parts_.haptics.is(Status::Ready);
  if (hasHaptics) group->enter();
  group->notify(MainQueue::shared(),
                [self = shared_from_this(), play, completion] { self->finishPlay(*play, completion); });
  callOff.keep();
  playing_ = play;
  isPlaying_ = true;
  failureReason_.clear();
  if (hasHaptics) startHaptics(setHaptics, group);
  return std::nullopt;
}

void QLHalvoController::schedulePlayer(QLHalvoControllerProtocol* player, Status Parts::*status, double delayInMillis,
                                       std::optional<std::shared_ptr<QLHalvoView>> view,
                                       const std::shared_ptr<Play>& play, const std::shared_ptr<DispatchGroup>& group) {
  const auto part = std::make_shared<CuePart>(std::shared_ptr<Status>(play, &(play->parts.*status)), group);
  MainQueue::shared().asyncAfter(
      delayInMillis / kMillisPerSecond, [weak = weak_from_this(), player, view = std::move(view), play, part] {
        const auto self = weak.lock();
        // A prepare that has come in between has taken away what was to be played.
        const bool canStart = self && view && !play->isCalledOff && play->load == self->loads_;
        const auto start = [&] {
          player->play(
              *view, self->configuration_.sdkConfig, [part] { part->end(Status::Played); },
              [part] { part->end(Status::Error); });
        };
        if (!canStart || !attempt(start)) part->end(Status::Error);
      });
}

void QLHalvoController::noteFailedPlay(const Play& play) {
  const bool isOvertaken = play.load != loads_;
  constexpr std::string_view kOvertaken = "A prepare has taken away what was to be played";
  if (play.parts.animation.is(Status::Error))
    addReason(!play.hasView ? "There is no view for the animation" : isOvertaken ? kOvertaken : kNoMemory);
  if (play.parts.sound.is(Status::Error)) addReason(isOvertaken ? kOvertaken : audioController_->failureReason());
  if (play.parts.haptics.is(Status::Error)) addHapticsReason(play.parts.haptics);
}

// Needs the group entered: the haptics manager leaves it, unless it throws.
void QLHalvoController::startHaptics(const Function<void(const Status&)>& setStatus,
                                     const std::shared_ptr<DispatchGroup>& group) {
  if (attempt([&] { hapticsManager_->play(setStatus, group); })) return;
  setStatus(Status::Error);
  group->leave();
}

void QLHalvoController::finishPlay(const Play& play, const HalvoCompletion& completion) {
  if (play.load == loads_) parts_ = play.parts;
  const Outcome outcome = combine(play.parts.animation, play.parts.sound, play.parts.haptics, retryOnPrepareFailure_);
  if (!configuration_.isPreparedHalvoCueValid)
    attempt([this] { printBanner(request_.preparingHalvoCue.value_or("")); });
  attempt([&] { noteFailedPlay(play); });
  std::optional<Account> ended;
  attempt([&] { ended = account(); });
  // Whatever the completion does. The flag is last, so that a play started from inside it is answered with 904.
  const Undo end([&] {
    attempt([&] {
      if (!ended) ended = account();
      const QLHalvoSoundProtocol* sound = audioController();
      const float volume = sound != nullptr ? sound->volumeLevel() : 0.0F;
      const bool isMuted = volume == 0.0F && ended->type != QLHalvoType::animationOnly;
      recordPlay(std::move(*ended), outcome.animation, play.parts.haptics, collaborators_->supportsHaptics(),
                 outcome.sound, isMuted);
    });
    isPlaying_ = false;
  });
  if (outcome.code && completion) completion(*outcome.code);
}

QLHalvoController::Account QLHalvoController::account() const {
  Account account{preparedHalvoCue_, halvoCueVersion_, request_.halvoType, request_.isHapticsEnabled, {}, {}, {}};
  if (!mixpanelAnalyticsManager_) return account;
  account.merchant = mixpanelAnalyticsManager_->merchant;
  account.environment = mixpanelAnalyticsManager_->environment;
  account.config = mixpanelAnalyticsManager_->config;
  return account;
}

// On the account of when the play ended, even if the next prepare has begun since.
void QLHalvoController::recordPlay(Account account, std::int64_t animationOutcome, const Status& haptics,
                                   bool supportsHaptics, std::int64_t soundOutcome, bool isMuted) {
  if (!mixpanelAnalyticsManager_ || !account.type) return;
  const auto exchangeAccount = [&] {
    std::swap(mixpanelAnalyticsManager_->merchant, account.merchant);
    std::swap(mixpanelAnalyticsManager_->environment, account.environment);
    std::swap(mixpanelAnalyticsManager_->config, account.config);
  };
  exchangeAccount();
  const Undo back(exchangeAccount);
  mixpanelAnalyticsManager_->recordPlay(
      account.cueName, account.cueVersion, *account.type, animationOutcome,
      {.isEnabled = account.isHapticsEnabled, .isSupported = supportsHaptics, .hapticsStatus = haptics}, soundOutcome,
      isMuted);
}

void QLHalvoController::recordRejectedPlay() {
  const std::int64_t rejected = rawValueOf(QLHalvoStatus::alreadyPlaying);
  const auto& config = configuration_.sdkConfig;
  const auto playing = playing_.lock();
  const Status& haptics = playing ? playing->parts.haptics : parts_.haptics;
  attempt([&] { recordPlay(account(), rejected, haptics, config && config->isHapticsSupported, rejected, false); });
}

}  // namespace quellaro
