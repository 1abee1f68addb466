#pragma once

#include <QuellaroHalvo/quellaro_halvo.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace quellaro {

// Which parts of a cue are prepared and played.
enum class QLHalvoType : std::int64_t { animationAndSound = 0, soundOnly = 1, animationOnly = 2 };

// The back-end environment the host runs against. It chooses the project that usage is reported to, and nothing else.
enum class QLHalvoEnvironment : std::int64_t { primary = 0, secondary = 1 };

// The backdrop of the cue view.
enum class QLHalvoBackground : std::int64_t { black = 0, white = 1 };

// What a prepare or a play has come to; quellaro_halvo.h explains each. It is also an error code of the standard
// library's, in the category named QLHalvoStatusDomain; every value counts as an error there, so a host compares with
// the values it accepts.
enum class QLHalvoStatus : std::int64_t {
  success = 800,
  successWithFallback = 801,
  prepareFailed = 901,
  soundPrepareFailed = 902,
  animationPrepareFailed = 903,
  alreadyPlaying = 904,
  playFailed = 905,
  soundPlayFailed = 906,
  animationPlayFailed = 907,
  notPrepared = 908,
  hapticsPrepareFailed = 909,
  hapticsPlayFailed = 910,
};

// What became of a sound, and how much a line of the log matters; quellaro_halvo.h explains each.
enum class QLHalvoSound : std::int64_t { none = 0, heard = 1, muted = 2, noServer = 3, brokenOff = 4, undecodable = 5 };
enum class QLHalvoLogLevel : std::int32_t { error = 1, warning = 2, info = 3 };

inline constexpr std::string_view QLHalvoStatusDomain = "QuellaroHalvo.QLHalvoStatus";
// The name of the notification that an AudioSessionObservation receives.
inline constexpr const char* QLAudioSessionDeactivated = QUELLARO_HALVO_AUDIO_SESSION_DEACTIVATED;

template <class Enumeration>
constexpr std::int64_t rawValueOf(Enumeration value) {
  return static_cast<std::int64_t>(value);
}
// Nothing for a raw value that names no case. Any thread.
inline std::optional<QLHalvoStatus> halvoStatusFromRawValue(std::int64_t rawValue) {
  if (!quellaro_halvo_status_is_valid(rawValue)) return std::nullopt;
  return static_cast<QLHalvoStatus>(rawValue);
}
// The case as it is spelled above, and a sentence for a person. Any thread.
inline std::string_view nameOf(QLHalvoStatus status) { return quellaro_halvo_status_name(rawValueOf(status)); }
inline std::string_view sentenceOf(QLHalvoStatus status) {
  return quellaro_halvo_status_description(rawValueOf(status));
}

inline const std::error_category& halvoStatusCategory() {
  class Category : public std::error_category {
    const char* name() const noexcept override { return quellaro_halvo_status_error_domain(); }
    std::string message(int value) const override { return quellaro_halvo_status_description(value); }
  };
  static const Category category;
  return category;
}
inline std::error_code make_error_code(QLHalvoStatus status) {
  return {static_cast<int>(status), halvoStatusCategory()};
}

}  // namespace quellaro

template <>
struct std::is_error_code_enum<quellaro::QLHalvoStatus> : std::true_type {};
