#include "platform/foundation/text/numbers.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

#include "platform/foundation/text/decimal_scan.h"

namespace quellaro {

namespace {

// Exponents are not counted beyond this; the largest file cannot hold enough digits to make up for it.
constexpr std::int64_t kExponentBound = 1'000'000'000'000;

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Adds the exponent behind `marker`, when it has digits, and gives where it ends.
const char* scanExponent(const char* p, const char* last, char marker, std::int64_t& exponent) {
  if (p == last || lower(*p) != marker) return p;
  const char* q = p + 1;
  const bool negative = q != last && *q == '-';
  if (q != last && (*q == '-' || *q == '+')) ++q;
  if (q == last || !isDigit(*q)) return p;
  std::int64_t read = 0;
  for (; q != last && isDigit(*q); ++q)
    if (read < kExponentBound) read = read * 10 + (*q - '0');
  exponent += negative ? -read : read;
  return q;
}

// What a number out of its type's range becomes. Too large is one whose first digit other than 0 stands before the
// point, once the exponent has moved it by as many places; a hexadecimal digit takes four.
template <class Number>
Number beyondRange(std::string_view text, char exponentMarker, int placesPerDigit) {
  std::int64_t places = 0;
  bool fraction = false;
  bool leading = true;
  const char* p = text.data();
  const char* const last = p + text.size();
  for (; p != last && lower(*p) != exponentMarker; ++p) {
    if (*p == '.') {
      fraction = true;
      continue;
    }
    leading = leading && *p == '0';
    if (leading && fraction) places -= placesPerDigit;
    if (!leading && !fraction) places += placesPerDigit;
  }
  scanExponent(p, last, exponentMarker, places);
  return places > 0 && !leading ? std::numeric_limits<Number>::infinity() : Number{0};
}

const char* skipDigits(const char* p, const char* last) {
  while (p != last && isDigit(*p)) ++p;
  return p;
}

// Any number without its sign.
const char* scanUnsigned(const char* first, const char* last, double& value) {
  const char* p = skipDigits(first, last);
  std::ptrdiff_t digits = p - first;
  if (p != last && *p == '.') {
    const char* const fraction = p + 1;
    p = skipDigits(fraction, last);
    digits += p - fraction;
  }
  if (digits == 0) return nullptr;
  std::int64_t exponent = 0;
  p = scanExponent(p, last, 'e', exponent);
  if (std::from_chars(first, p, value).ec != std::errc{})
    value = beyondRange<double>({first, static_cast<std::size_t>(p - first)}, 'e', 1);
  return p;
}

// A number of at most seven digits on either side of the point, without exponent, text enough behind it to look at
// eight characters at a time. Gives nullptr when it is any other.
const char* scanMedium(const char* p, double& value) {
  static constexpr std::array<std::uint32_t, 8> kPowers = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000};
  const std::uint64_t front = swar::loadDigits(p);
  const unsigned whole = swar::leadingDigits(front);
  if (whole == 8) return nullptr;
  std::uint64_t mantissa = whole != 0 ? swar::join(front, whole) : 0;
  p += whole;
  unsigned fraction = 0;
  if (*p == '.') {
    const std::uint64_t back = swar::loadDigits(++p);
    fraction = swar::leadingDigits(back);
    if (fraction == 8) return nullptr;
    if (fraction != 0) mantissa = mantissa * kPowers[fraction] + swar::join(back, fraction);
    p += fraction;
  }
  if (whole + fraction == 0 || lower(*p) == 'e') return nullptr;
  value = static_cast<double>(static_cast<std::int64_t>(mantissa)) / kPowers[fraction];
  return p;
}

// Seven digits, point and eight more characters to look at.
constexpr std::ptrdiff_t kMediumRoom = 7 + 1 + 8;

bool equalsIgnoringCase(std::string_view text, std::string_view word) {
  if (text.size() != word.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i)
    if (lower(text[i]) != word[i]) return false;
  return true;
}

bool isHexDigit(char c) { return isDigit(c) || (lower(c) >= 'a' && lower(c) <= 'f'); }

std::optional<float> unsignedFloat(std::string_view text) {
  if (equalsIgnoringCase(text, "inf") || equalsIgnoringCase(text, "infinity"))
    return std::numeric_limits<float>::infinity();
  if (equalsIgnoringCase(text, "nan")) return std::numeric_limits<float>::quiet_NaN();

  const bool hexadecimal = text.size() > 2 && text[0] == '0' && lower(text[1]) == 'x';
  if (hexadecimal) text.remove_prefix(2);
  // Keeps from_chars from reading words and signs of its own.
  if (text.empty() || !(text[0] == '.' || (hexadecimal ? isHexDigit(text[0]) : isDigit(text[0])))) return std::nullopt;
  float value = 0;
  const char* const last = text.data() + text.size();
  const auto [end, error] =
      std::from_chars(text.data(), last, value, hexadecimal ? std::chars_format::hex : std::chars_format::general);
  if (end != last) return std::nullopt;
  if (error == std::errc{}) return value;
  if (error != std::errc::result_out_of_range) return std::nullopt;
  return hexadecimal ? beyondRange<float>(text, 'p', 4) : beyondRange<float>(text, 'e', 1);
}

}  // namespace

const char* scanMagnitude(const char* first, const char* last, double& value) {
  if constexpr (std::endian::native == std::endian::little) {
    const std::ptrdiff_t room = last - first;
    if (room < kMediumRoom) {
      // The end of the text, with room made behind it.
      std::array<char, 2 * kMediumRoom> padded{};
      std::copy(first, last, padded.begin());
      const char* const end = scanMedium(padded.data(), value);
      if (end != nullptr) return first + (end - padded.data());
    } else if (const char* const end = scanMedium(first, value)) {
      return end;
    }
  }
  return scanUnsigned(first, last, value);
}

double doubleValue(std::string_view text) {
  const std::size_t start = text.find_first_not_of(" \t\n\v\f\r");
  double value = 0;
  if (start != std::string_view::npos) scanDecimal(text.data() + start, text.data() + text.size(), value);
  return value;
}

std::optional<float> floatFromText(std::string_view text) {
  const bool negative = !text.empty() && text[0] == '-';
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) text.remove_prefix(1);
  const std::optional<float> magnitude = unsignedFloat(text);
  return magnitude && negative ? -*magnitude : magnitude;
}

void appendShortest(std::string& text, double value) {
  if (std::isnan(value)) {
    text += "nan";
    return;
  }
  std::array<char, 32> buffer;  // the longest is "-2.2250738585072014e-308"
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
  text.append(buffer.data(), end);
}

std::string decimalDescription(double value) {
  if (std::isnan(value)) return "nan";
  std::array<char, 400> buffer;  // the longest are 5e-324's neighbours: some 310 zeros and 17 digits
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed).ptr;
  std::string text(buffer.data(), end);
  if (std::isfinite(value) && text.find('.') == std::string::npos) text += ".0";
  return text;
}

}  // namespace quellaro
