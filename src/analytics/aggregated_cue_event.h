#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/foundation/date.h"
#include "platform/foundation/json/json_decoder.h"
#include "platform/foundation/json/json_writer.h"
#include "types/component_status.h"
#include "types/halvo_enums.h"
#include "types/merchant.h"

namespace quellaro {

// All plays of one cue for one merchant in one period, as counts. Nothing is kept of a single play.
struct MixpanelAggregatedCueEventProperties {
  // What a stored record reads as when it comes from a version that did not know these.
  static constexpr bool kHapticsEnabledWhenAbsent = true;
  static constexpr bool kHapticsSupportedWhenAbsent = false;

  std::string sdkVersion;
  NSDate startDate;  // of the first play
  NSDate endDate;    // of the last one counted
  std::shared_ptr<const QLHalvoMerchant> merchant;
  std::string cueName;
  std::string cueVersion;
  // Plays. Every one counts as a success or as a failure.
  std::int64_t totalCount = 0;
  std::int64_t successCount = 0;  // every part of the cue played
  std::int64_t failureCount = 0;
  std::int64_t animationAndSoundCount = 0;  // successes of a cue with both
  std::int64_t hapticsPlayCount = 0;
  // Of the first play; later ones change nothing.
  bool hapticsSupported = false;
  bool hapticsEnabled = false;
  std::int64_t animationAndSoundFailureCount = 0;  // both failed
  std::int64_t animationOnlyCount = 0;  // only the animation played, as asked for or because the sound failed
  std::int64_t animationFailureCount = 0;
  std::int64_t soundOnlyCount = 0;  // only the sound played, as asked for or because the animation failed
  std::int64_t soundFailureCount = 0;
  std::int64_t unknownFailureCount = 0;  // rejected, or failed without a reason
  std::int64_t mutedPlayCount = 0;       // at volume zero; animation-only cues have none

  // Counts one play; leaves the dates alone. The outcomes are raw values of QLHalvoStatus.
  void countPlay(QLHalvoType type, std::int64_t animationOutcome, std::int64_t soundOutcome,
                 const ComponentStatus& hapticsStatus, bool isMuted);

 private:
  void countBoth(std::int64_t animationOutcome, std::int64_t soundOutcome);
  void countSingle(std::int64_t outcome, std::int64_t failedOutcome, std::int64_t& played, std::int64_t& failed);
};

// One record of the analytics files.
struct MixpanelAggregatedCueEvent {
  std::string event;
  MixpanelAggregatedCueEventProperties properties;

  // cornershop gives cornershop_played.
  static std::string nameFor(const std::string& cueName);
  // For the first play of a period: nothing counted yet, both dates now.
  static MixpanelAggregatedCueEvent create(const std::string& cueName, const std::string& cueVersion,
                                           std::shared_ptr<const QLHalvoMerchant> merchant,
                                           const std::string& sdkVersion, bool hapticsEnabled, bool hapticsSupported);

  // The stored form. What is wrong with it is left with the field's decoder.
  static MixpanelAggregatedCueEvent fromJSON(const JSONField& json);
  void writeJSON(JSONWriter& writer) const;
};

// A whole analytics file, read and written compactly. One unreadable record makes all of them unreadable.
Result<std::vector<MixpanelAggregatedCueEvent>> decodeAggregatedCueEvents(std::string json);
std::string encodeAggregatedCueEvents(const std::vector<MixpanelAggregatedCueEvent>& events);

}  // namespace quellaro
