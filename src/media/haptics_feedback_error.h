#pragma once

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
// Whether this is that error, whatever its description says.
bool isHapticsFeedbackError(const NSError& error, HapticsFeedbackError expected);

}  // namespace quellaro
