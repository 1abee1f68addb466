#include "svg/hex_color.h"

#include <algorithm>
#include <cstdint>
#include <string>

#include "platform/foundation/text/scanner.h"

namespace quellaro {

namespace {

constexpr std::size_t kFullLength = 8;  // rrggbbaa

constexpr bool startsCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80; }

// Each character twice. Only bytes of ASCII characters matter to what follows.
std::string doubled(std::string_view text) {
  std::string twice;
  for (const char c : text) twice.append(2, c);
  return twice;
}

// The number that the digits at the start make. Nothing is skipped: a text that starts with anything else is 0.
std::uint64_t hexadecimal(std::string_view text) {
  static constexpr NSCharacterSet kNothing{""};
  return NSScanner(text, kNothing).scanHexLongLong().value_or(0);
}

std::uint64_t normalizedNumber(std::string_view text) {
  if (!text.empty() && text.front() == '#') text.remove_prefix(1);
  const auto length = static_cast<std::size_t>(std::count_if(text.begin(), text.end(), startsCharacter));
  if (length >= kFullLength) return hexadecimal(text);
  if (length == 4) return hexadecimal(doubled(text));
  if (length == 3) return hexadecimal(doubled(text) + "ff");
  return hexadecimal(std::string(text) + "ff");
}

}  // namespace

CGColor colorFromHexString(std::string_view text) {
  const std::uint64_t number = normalizedNumber(text);
  const auto component = [number](unsigned shift) { return static_cast<double>(number >> shift & 0xFFU) / 255.0; };
  return {component(24), component(16), component(8), component(0)};
}

}  // namespace quellaro
