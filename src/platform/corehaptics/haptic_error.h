#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "platform/foundation/error.h"

namespace quellaro {

inline constexpr const char* kHapticErrorDomain = "CoreHapticsErrorDomain";

enum class CHHapticErrorCode : std::int64_t {
  engineNotRunning = -4805,
  notSupported = -4809,
  invalidPatternDictionary = -4814,
  invalidTime = -4840,
};

inline NSError hapticError(CHHapticErrorCode code, std::string description) {
  return {kHapticErrorDomain, static_cast<std::int64_t>(code), std::move(description)};
}

}  // namespace quellaro
