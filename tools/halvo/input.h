#pragma once

#include <string>

#include "platform/foundation/error.h"

namespace halvo {

// All that an argument names: a file, a pipe, which is read to its end, or with "-" standard input.
quellaro::Result<std::string> readInput(const std::string& name);

}  // namespace halvo
