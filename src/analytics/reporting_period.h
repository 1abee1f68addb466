#pragma once

#include <optional>
#include <string>

#include "platform/foundation/date.h"

namespace quellaro {

// Whether `start` lies in another calendar period than the present moment, in the device's own time zone: in another
// month when the frequency is "M", in another quarter whatever else it is. An earlier period is another one too, so
// callers pass no start that is still to come.
bool isPeriodElapsed(NSDate start, const std::optional<std::string>& frequency);

}  // namespace quellaro
