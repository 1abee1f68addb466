#pragma once

#include <string>

#include "platform/foundation/json/json_reader.h"

namespace halvo::motion {

// A motion file's text for the library that evaluates it, without what it does not draw and what names other files.
// Masks that are inverted are written the other way round, as the library does not tell of that.
std::string cleanedMotion(const quellaro::JSONValue& root);

}  // namespace halvo::motion
