#include "analytics/aggregated_cue_event.h"

#include <limits>
#include <utility>

#include "types/halvo_status.h"

namespace quellaro {

namespace {

constexpr std::int64_t kPlayed = rawValueOf(QLHalvoStatus::success);
constexpr std::int64_t kSoundFailed = rawValueOf(QLHalvoStatus::soundPlayFailed);
constexpr std::int64_t kAnimationFailed = rawValueOf(QLHalvoStatus::animationPlayFailed);

bool isUnknownFailure(std::int64_t outcome) {
  return outcome == rawValueOf(QLHalvoStatus::alreadyPlaying) || outcome == rawValueOf(QLHalvoStatus::playFailed);
}

// A count that came from a file may be at its end already.
void increment(std::int64_t& count) {
  if (count < std::numeric_limits<std::int64_t>::max()) ++count;
}

}  // namespace

void MixpanelAggregatedCueEventProperties::countPlay(QLHalvoType type, std::int64_t animationOutcome,
                                                     std::int64_t soundOutcome, const ComponentStatus& hapticsStatus,
                                                     bool isMuted) {
  increment(totalCount);
  if (type != QLHalvoType::animationOnly && isMuted) increment(mutedPlayCount);
  if (isUnknownFailure(animationOutcome) || isUnknownFailure(soundOutcome)) increment(unknownFailureCount);
  switch (type) {
    case QLHalvoType::animationAndSound:
      countBoth(animationOutcome, soundOutcome);
      break;
    case QLHalvoType::soundOnly:
      countSingle(soundOutcome, kSoundFailed, soundOnlyCount, soundFailureCount);
      break;
    case QLHalvoType::animationOnly:
      countSingle(animationOutcome, kAnimationFailed, animationOnlyCount, animationFailureCount);
      break;
  }
  if (hapticsStatus.is(ComponentStatus::Played)) increment(hapticsPlayCount);
}

void MixpanelAggregatedCueEventProperties::countBoth(std::int64_t animationOutcome, std::int64_t soundOutcome) {
  if (animationOutcome == kPlayed && soundOutcome == kPlayed) {
    increment(successCount);
    increment(animationAndSoundCount);
    return;
  }
  increment(failureCount);
  if (animationOutcome == kAnimationFailed && soundOutcome == kSoundFailed) {
    increment(animationAndSoundFailureCount);
  } else if (animationOutcome == kAnimationFailed && soundOutcome == kPlayed) {
    increment(soundOnlyCount);
    increment(animationFailureCount);
  } else if (animationOutcome == kPlayed && soundOutcome == kSoundFailed) {
    increment(animationOnlyCount);
    increment(soundFailureCount);
  }
}

void MixpanelAggregatedCueEventProperties::countSingle(std::int64_t outcome, std::int64_t failedOutcome,
                                                       std::int64_t& played, std::int64_t& failed) {
  if (outcome == kPlayed) {
    increment(successCount);
    increment(played);
    return;
  }
  increment(failureCount);
  if (outcome == failedOutcome) increment(failed);
}

std::string MixpanelAggregatedCueEvent::nameFor(const std::string& cueName) { return cueName + "_played"; }

MixpanelAggregatedCueEvent MixpanelAggregatedCueEvent::create(const std::string& cueName, const std::string& cueVersion,
                                                              std::shared_ptr<const QLHalvoMerchant> merchant,
                                                              const std::string& sdkVersion, bool hapticsEnabled,
                                                              bool hapticsSupported) {
  MixpanelAggregatedCueEvent created;
  created.event = nameFor(cueName);
  MixpanelAggregatedCueEventProperties& properties = created.properties;
  properties.sdkVersion = sdkVersion;
  properties.startDate = properties.endDate = NSDate::now();
  properties.merchant = std::move(merchant);
  properties.cueName = cueName;
  properties.cueVersion = cueVersion;
  properties.hapticsEnabled = hapticsEnabled;
  properties.hapticsSupported = hapticsSupported;
  return created;
}

}  // namespace quellaro
