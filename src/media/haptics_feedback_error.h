#pragma once

#include <string_view>

#include "platform/foundation/error.h"

namespace quellaro {

// Why a cue has no haptics.
enum class HapticsFeedbackError {
  invalidAHAPFile = 0,
  deviceDoesNotSupportHaptics = 1,
  cueDoesNotSupportHaptics = 2,
  unknown = 3,
};

// The console line for the error; empty for `unknown`.
const char* messageOf(HapticsFeedbackError error);
NSError errorOf(HapticsFeedbackError error);
// In words for a person: those of the console line, if it is such an error.
std::string_view reasonOf(const NSError& error);
// Whether this is that error, whatever its description says.
bool isHapticsFeedbackError(const NSError& error, HapticsFeedbackError expected);

}  // namespace quellaro
