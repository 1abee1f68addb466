#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

// One number at a time, on every processor. Most are short: eight characters are looked at as one 64-bit word, the
// first in its lowest byte.
namespace quellaro {

namespace swar {

inline constexpr std::uint64_t kHighBits = 0x8080808080808080;

// Each byte becomes 0 to 9 where there is a digit, and more where there is not.
inline std::uint64_t loadDigits(const char* p) {
  std::uint64_t eight = 0;
  std::memcpy(&eight, p, sizeof eight);
  return eight ^ 0x3030303030303030;
}

// The high bit of each byte that is no digit. What lies behind a byte outside ASCII is not reliable.
inline std::uint64_t nonDigits(std::uint64_t digits) { return ((digits + 0x7676767676767676) | digits) & kHighBits; }

// How many of the eight are digits before the first that is not.
inline unsigned leadingDigits(std::uint64_t digits) {
  return static_cast<unsigned>(std::countr_zero(nonDigits(digits))) / 8;
}

// The number that the first `count` (1 to 8) digits make: neighbours are joined to pairs, pairs to fours, fours to the
// whole, each step by one multiplication for all of them.
inline std::uint32_t join(std::uint64_t digits, unsigned count) {
  constexpr std::uint64_t kPairs = 0x000000FF000000FF;
  digits <<= 64 - 8 * count;
  digits = digits * 10 + (digits >> 8);
  return static_cast<std::uint32_t>(((digits & kPairs) * (100 + (std::uint64_t{1000000} << 32)) +
                                     ((digits >> 16) & kPairs) * (1 + (std::uint64_t{10000} << 32))) >>
                                    32);
}

// A number of at most seven characters, point included, with one more behind it. Gives nullptr when it is any other.
inline const char* scanShort(const char* p, double& value) {
  static constexpr std::array<double, 8> kPowers = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7};
  const std::uint64_t digits = loadDigits(p);
  const std::uint64_t others = nonDigits(digits);
  if (others == 0) return nullptr;
  const auto whole = static_cast<unsigned>(std::countr_zero(others)) / 8;
  const unsigned point = p[whole] == '.' ? 1 : 0;
  // Without a point the next character that is no digit does not matter.
  const auto second = static_cast<unsigned>(std::countr_zero(others & (others - 1))) / 8;
  const unsigned count = point != 0 ? second - 1 : whole;
  if (count == 0 || count + point == 8 || (p[count + point] | 0x20) == 'e') return nullptr;
  // The point is taken out by moving what is behind it.
  const std::uint64_t front = (std::uint64_t{1} << (8 * whole)) - 1;
  const std::uint64_t joined = (digits & front) | ((digits >> 8) & ~front);
  value = static_cast<double>(static_cast<std::int32_t>(join(joined, count))) / kPowers[count - whole];
  return p + count + point;
}

}  // namespace swar

// Any number without its sign; null when there is none.
const char* scanMagnitude(const char* first, const char* last, double& value);

// Reads the decimal number that starts at `first`: an optional sign, digits with at most one point among, before or
// after them, and an exponent when it has digits of its own. Gives where the number ends, or `first` when there is
// none; `value` is then left alone. What is too large becomes infinite, what is too small 0, each with its sign.
inline const char* scanDecimal(const char* first, const char* last, double& value) {
  if (first == last) return first;
  const bool negative = *first == '-';
  const char* const digits = first + (negative || *first == '+' ? 1 : 0);
  double magnitude = 0;
  const char* end = nullptr;
  if constexpr (std::endian::native == std::endian::little)
    if (last - digits >= 8) end = swar::scanShort(digits, magnitude);
  if (end == nullptr) end = scanMagnitude(digits, last, magnitude);
  if (end == nullptr) return first;
  // Half of all numbers are negative, in no order that a branch could be guessed from.
  value = std::bit_cast<double>(std::bit_cast<std::uint64_t>(magnitude) ^ (std::uint64_t{negative} << 63));
  return end;
}

}  // namespace quellaro
