#pragma once

#include <cstdint>
#include <optional>

namespace quellaro {

// Which parts of a cue are prepared and played.
enum class QLHalvoType : std::int64_t {
  animationAndSound = 0,
  soundOnly = 1,
  animationOnly = 2,
};

// The back-end environment the host runs against. It chooses the project that usage is reported to, and nothing else.
enum class QLHalvoEnvironment : std::int64_t {
  primary = 0,
  secondary = 1,
};

// The backdrop of the cue view.
enum class QLHalvoBackground : std::int64_t {
  black = 0,
  white = 1,
};

// What became of a sound.
enum class QLHalvoSound : std::int64_t {
  none = 0,
  heard = 1,
  muted = 2,
  noServer = 3,
  brokenOff = 4,
  undecodable = 5,
};

// The largest raw value of each enumeration; the smallest is 0.
constexpr std::int64_t largestRawValue(QLHalvoType) { return 2; }
constexpr std::int64_t largestRawValue(QLHalvoEnvironment) { return 1; }
constexpr std::int64_t largestRawValue(QLHalvoBackground) { return 1; }

// Nothing for a raw value that names no case: fromRawValue<QLHalvoType>(1).
template <class Enumeration>
constexpr std::optional<Enumeration> fromRawValue(std::int64_t rawValue) {
  if (rawValue < 0 || rawValue > largestRawValue(Enumeration{})) return std::nullopt;
  return static_cast<Enumeration>(rawValue);
}

template <class Enumeration>
constexpr std::int64_t rawValueOf(Enumeration value) {
  return static_cast<std::int64_t>(value);
}

}  // namespace quellaro
