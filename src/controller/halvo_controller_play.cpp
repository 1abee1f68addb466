#include <string>
#include <utility>

#include "assets/sdk_config.h"
#include "controller/halvo_collaborators.h"
#include "controller/halvo_controller.h"
#include "platform/dispatch/main_queue.h"
#include "platform/foundation/console.h"

namespace quellaro {

namespace {

constexpr std::int64_t kFine = rawValueOf(QLHalvoStatus::success);
constexpr double kMillisPerSecond = 1000.0;
constexpr std::size_t kBannerWidth = 78;

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

void QLHalvoController::play(std::shared_ptr<QLHalvoView> view, HalvoCompletion completion) {
  UpgradeControlling* upgrade = upgradeController();
  if (upgrade != nullptr && halvoType_ && upgrade->didRemoteUpgradeFound() && upgrade->didRemoteUpgradeSuccessful())
    playAfterUpgrade(std::move(view), std::move(completion));
  else
    runPlaySequence(std::move(view), std::move(completion));
}

// New assets have arrived since the last prepare: prepares them first.
void QLHalvoController::playAfterUpgrade(std::shared_ptr<QLHalvoView> view, HalvoCompletion completion) {
  shouldReprepareAssets_ = true;
  const auto whenPrepared = [weak = weak_from_this(), view = std::move(view),
                             completion = std::move(completion)](QLHalvoStatus code) {
    const auto self = weak.lock();
    if (!self) return;
    if (code == QLHalvoStatus::success || code == QLHalvoStatus::successWithFallback ||
        code == QLHalvoStatus::hapticsPrepareFailed) {
      self->shouldReprepareAssets_ = false;
      self->runPlaySequence(view, completion);
      return;
    }
    self->upgradeController()->discardActiveCueAssets();
    if (completion) completion(QLHalvoStatus::playFailed);
  };
  runPrepareSequence(*halvoType_, whenPrepared);
}

void QLHalvoController::runPlaySequence(std::shared_ptr<QLHalvoView> view, HalvoCompletion completion) {
  if (isPlaying_) {
    recordRejectedPlay();
    if (completion) completion(QLHalvoStatus::alreadyPlaying);
    return;
  }
  for (Status* status : {&animationStatus_, &soundStatus_, &hapticsStatus_})
    if (status->is(Status::Played)) *status = Status::Ready;
  const auto canPlay = [](const Status& s) { return s.is(Status::Not_Required) || s.is(Status::Ready); };
  if (playConfigStatus_.is(Status::Error) || versionConfigStatus_.is(Status::Error) || !canPlay(soundStatus_) ||
      !canPlay(animationStatus_)) {
    if (completion) completion(QLHalvoStatus::notPrepared);
    return;
  }

  isPlaying_ = true;
  const auto group = std::make_shared<DispatchGroup>();
  if (animationStatus_.is(Status::Ready))
    schedulePlayer(animationController(), &QLHalvoController::animationStatus_, sdkConfig_->animationDelayInMillis,
                   view ? std::optional(view) : std::nullopt, group);
  if (soundStatus_.is(Status::Ready))
    schedulePlayer(audioController(), &QLHalvoController::soundStatus_, sdkConfig_->soundDelayInMillis,
                   std::shared_ptr<QLHalvoView>(), group);
  if (hapticsStatus_.is(Status::Ready)) {
    group->enter();
    hapticsManager_->play(hapticsStatusWriter(), group);
  }
  group->notify(MainQueue::shared(),
                [self = shared_from_this(), completion = std::move(completion)] { self->finishPlay(completion); });
}

void QLHalvoController::schedulePlayer(QLHalvoControllerProtocol* player, Status QLHalvoController::*status,
                                       double delayInMillis, std::optional<std::shared_ptr<QLHalvoView>> view,
                                       const std::shared_ptr<DispatchGroup>& group) {
  group->enter();
  MainQueue::shared().asyncAfter(
      delayInMillis / kMillisPerSecond, [weak = weak_from_this(), player, status, view = std::move(view), group] {
        const auto self = weak.lock();
        if (!self) {
          group->leave();
          return;
        }
        const auto finishAs = [&](Status::Case outcome) {
          return [weak, status, group, outcome] {
            if (const auto controller = weak.lock()) (*controller).*status = outcome;
            group->leave();
          };
        };
        if (!view) {
          finishAs(Status::Error)();
          return;
        }
        player->play(*view, self->sdkConfig_, finishAs(Status::Played), finishAs(Status::Error));
      });
}

void QLHalvoController::finishPlay(const HalvoCompletion& completion) {
  if (!isPreparedHalvoCueValid_) printBanner(preparingHalvoCue_.value_or(""));
  const Outcome outcome = combine(animationStatus_, soundStatus_, hapticsStatus_, retryOnPrepareFailure_);
  if (outcome.code && completion) completion(*outcome.code);

  const HapticsAnalytics haptics{.isEnabled = isHapticsEnabled_.value_or(false),
                                 .isSupported = collaborators_->supportsHaptics(),
                                 .hapticsStatus = hapticsStatus_};
  const QLHalvoSoundProtocol* sound = audioController();
  const float volume = sound != nullptr ? sound->volumeLevel() : 0.0F;
  const bool isMuted = volume == 0.0F && halvoType_ != QLHalvoType::animationOnly;
  if (mixpanelAnalyticsManager_ && halvoType_)
    mixpanelAnalyticsManager_->recordPlay(preparedHalvoCue_, halvoCueVersion_, *halvoType_, outcome.animation, haptics,
                                          outcome.sound, isMuted);
  // Last, so that a play started from inside the completion is answered with 904.
  isPlaying_ = false;
}

void QLHalvoController::recordRejectedPlay() {
  if (!mixpanelAnalyticsManager_ || !halvoType_) return;
  const HapticsAnalytics haptics{.isEnabled = isHapticsEnabled_.value_or(false),
                                 .isSupported = sdkConfig_ && sdkConfig_->isHapticsSupported,
                                 .hapticsStatus = hapticsStatus_};
  const std::int64_t rejected = rawValueOf(QLHalvoStatus::alreadyPlaying);
  mixpanelAnalyticsManager_->recordPlay(preparedHalvoCue_, halvoCueVersion_, *halvoType_, rejected, haptics, rejected,
                                        false);
}

}  // namespace quellaro
