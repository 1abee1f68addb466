#pragma once

#include <string>

#include "platform/foundation/error.h"

namespace halvo {

// Whether an argument names what can be read only once: a pipe, a device or with "-" standard input.
bool isStream(const std::string& name);

// All that an argument names: a file, a pipe, which is read to its end, or with "-" standard input.
quellaro::Result<std::string> readInput(const std::string& name);

}  // namespace halvo
