#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace quellaro {

// What a prepare or a play has come to.
enum class QLHalvoStatus : std::int64_t {
  // prepare: every required part is ready. play: every part has played.
  success = 800,
  // play: every part has played, but an earlier prepare of this controller had to discard the downloaded assets.
  successWithFallback = 801,
  // prepare: a configuration is missing or broken, or neither animation nor sound is usable.
  prepareFailed = 901,
  // prepare: the sound failed, the animation is usable.
  soundPrepareFailed = 902,
  // prepare: the animation failed, the sound is usable.
  animationPrepareFailed = 903,
  // play: another play is in progress.
  alreadyPlaying = 904,
  // play: failed otherwise; also when new assets turned out unusable just before it.
  playFailed = 905,
  // play: the sound failed.
  soundPlayFailed = 906,
  // play: the animation failed, the sound is usable.
  animationPlayFailed = 907,
  // play: nothing has been prepared.
  notPrepared = 908,
  // prepare: sound and animation are usable, the haptics failed.
  hapticsPrepareFailed = 909,
  // play: sound and animation have played, the haptics failed.
  hapticsPlayFailed = 910,
};

inline constexpr std::string_view QLHalvoStatusDomain = "QuellaroHalvo.QLHalvoStatus";

// Nothing for a raw value that names no case.
std::optional<QLHalvoStatus> halvoStatusFromRawValue(std::int64_t rawValue);
// The case as it is spelled above; "unknown" for a value that is none. Ended by a zero, as the sentence is.
std::string_view nameOf(QLHalvoStatus status);
// A sentence for a person.
std::string_view sentenceOf(QLHalvoStatus status);
}  // namespace quellaro
