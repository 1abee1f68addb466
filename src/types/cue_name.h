#pragma once

#include <string>
#include <string_view>

namespace quellaro {

// A cue's name as directories, keys and the store know it: without "_", "-" and blanks, in lower case. Always valid
// UTF-8.
std::string normalisedCueName(std::string_view name);

}  // namespace quellaro
