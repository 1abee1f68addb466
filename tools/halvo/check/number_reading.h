#pragma once

#include <cmath>
#include <string_view>

#include "platform/foundation/text/decimal_scan.h"

namespace halvo {

// Beyond this the fixed-point numbers of renderers, ours too, begin to lose precision.
inline constexpr double kLargestCoordinate = 1e6;

inline bool isOutOfRange(double value) { return !(std::fabs(value) <= kLargestCoordinate); }

// The number at the start of a text, and what follows it. `isPlain` is false when there is none, or one that ends in
// its point, which not every program reads.
struct ReadNumber {
  double value = 0;
  bool isPlain = false;
  std::string_view rest;
};

inline std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// As the engine reads it.
inline ReadNumber readNumber(std::string_view text) {
  ReadNumber read;
  const char* const last = text.data() + text.size();
  const char* const end = quellaro::scanDecimal(text.data(), last, read.value);
  read.isPlain = end != text.data() && end[-1] != '.';
  read.rest = {end, static_cast<std::size_t>(last - end)};
  return read;
}

}  // namespace halvo
