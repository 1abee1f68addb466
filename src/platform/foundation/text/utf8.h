#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quellaro {

// What a text begins with.
struct UTF8Sequence {
  // Absent for a malformed sequence; `length` is then the longest part of it that could have begun a character, at
  // least 1.
  std::optional<char32_t> character;
  std::size_t length;
};
// The text must not be empty.
UTF8Sequence firstUTF8Sequence(std::string_view text);
// `character` must be one of Unicode's.
void appendUTF8(std::string& out, char32_t character);

bool isValidUTF8(std::string_view text);

// The text with every malformed sequence replaced by U+FFFD: where text enters from a host, it becomes valid.
std::string repairedUTF8(std::string_view text);

// What comes from a file, to be shown to people: in one line and without anything that would change a terminal; cut
// when it is longer than that.
std::string printable(std::string_view text, std::size_t longest = 60);

// Lower case as the platform has it, beyond ASCII too, and whatever locale the host has set.
std::string lowercased(std::string_view text);

}  // namespace quellaro
