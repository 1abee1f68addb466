#pragma once

#include <string_view>

namespace quellaro {

// 36 characters: upper-case hexadecimal digits, hyphenated 8-4-4-4-12.
inline bool isUUIDText(std::string_view text) {
  if (text.size() != 36) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool hyphen = i == 8 || i == 13 || i == 18 || i == 23;
    if (std::string_view(hyphen ? "-" : "0123456789ABCDEF").find(text[i]) == std::string_view::npos) return false;
  }
  return true;
}

}  // namespace quellaro
