#include "media/haptics_feedback_error.h"

#include <cstdint>
#include <string>

namespace quellaro {

namespace {
constexpr const char* kDomain = "QuellaroHalvo.HapticsFeedbackError";
}

const char* messageOf(HapticsFeedbackError error) {
  switch (error) {
    case HapticsFeedbackError::invalidAHAPFile:
      return "[QuellaroHalvoSDK] ERROR: Corrupted/Invalid AHAP file";
    case HapticsFeedbackError::deviceDoesNotSupportHaptics:
      return "[QuellaroHalvoSDK] ERROR: Device does not support haptics feedback";
    case HapticsFeedbackError::cueDoesNotSupportHaptics:
      return "[QuellaroHalvoSDK] ERROR: Cue does not support haptics feedback";
    case HapticsFeedbackError::unknown:
      break;
  }
  return "";
}

NSError errorOf(HapticsFeedbackError error) {
  const auto code = static_cast<std::int64_t>(error);
  return {kDomain, code,
          "The operation could not be completed (" + std::string(kDomain) + " error " + std::to_string(code) + ")"};
}

bool isHapticsFeedbackError(const NSError& error, HapticsFeedbackError expected) {
  return error.domain == kDomain && error.code == static_cast<std::int64_t>(expected);
}

}  // namespace quellaro
