#pragma once

#include <string>
#include <string_view>

namespace quellaro {

bool isValidUTF8(std::string_view text);

// The text with every malformed sequence replaced by U+FFFD: where text enters from a host, it becomes valid.
std::string repairedUTF8(std::string_view text);

// Lower case as the platform has it, beyond ASCII too, and whatever locale the host has set.
std::string lowercased(std::string_view text);

}  // namespace quellaro
