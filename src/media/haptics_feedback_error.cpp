#include "media/haptics_feedback_error.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace quellaro {

namespace {
constexpr const char* kDomain = "QuellaroHalvo.HapticsFeedbackError";
// Of every line.
constexpr std::string_view kPrefix = "[QuellaroHalvoSDK] ERROR: ";
}  // namespace

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

std::string_view reasonOf(const NSError& error) {
  std::string_view line = error.domain == kDomain ? messageOf(static_cast<HapticsFeedbackError>(error.code)) : "";
  if (line.empty()) return error.localizedDescription;
  line.remove_prefix(kPrefix.size());
  return line;
}

bool isHapticsFeedbackError(const NSError& error, HapticsFeedbackError expected) {
  return error.domain == kDomain && error.code == static_cast<std::int64_t>(expected);
}

}  // namespace quellaro
