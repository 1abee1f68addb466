#include "platform/foundation/numbers.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

#include "platform/foundation/decimal_scan.h"

namespace quellaro {

namespace {

// Powers of ten that a double holds exactly.
constexpr std::array<double, 23> kExactPowers = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                                 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr std::int64_t kLargestExactPower = kExactPowers.size() - 1;
constexpr std::uint64_t kLargestExactInteger = std::uint64_t{1} << 53;
// As many digits as always fit into 64 bits.
constexpr int kMantissaDigits = 19;
// Exponents are not counted beyond this; the largest file cannot hold enough digits to make up for it.
constexpr std::int64_t kExponentBound = 1'000'000'000'000;

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// A number's parts: mantissa * 10^exponent, unless digits that matter did not fit.
struct Decimal {
  std::uint64_t mantissa = 0;
  std::int64_t exponent = 0;
  int digits = 0;
  bool truncated = false;

  void take(char c, bool fraction) {
    const auto digit = static_cast<std::uint64_t>(c - '0');
    if (digits < kMantissaDigits) {
      mantissa = mantissa * 10 + digit;
      digits += mantissa != 0 ? 1 : 0;
      exponent -= fraction ? 1 : 0;
    } else {
      truncated = truncated || digit != 0;
      exponent += fraction ? 0 : 1;
    }
  }
};

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

// What a number out of the range of its type becomes, by where its first digit stands.
template <class Number>
Number beyondRange(bool large) {
  return large ? std::numeric_limits<Number>::infinity() : Number{0};
}

double valueOf(const Decimal& decimal, const char* first, const char* last) {
  if (decimal.mantissa == 0) return 0;
  if (!decimal.truncated && decimal.mantissa <= kLargestExactInteger) {
    const auto mantissa = static_cast<double>(decimal.mantissa);
    if (decimal.exponent >= 0 && decimal.exponent <= kLargestExactPower)
      return mantissa * kExactPowers[static_cast<std::size_t>(decimal.exponent)];
    if (decimal.exponent < 0 && decimal.exponent >= -kLargestExactPower)
      return mantissa / kExactPowers[static_cast<std::size_t>(-decimal.exponent)];
  }
  double value = 0;
  if (std::from_chars(first, last, value).ec == std::errc{}) return value;
  return beyondRange<double>(decimal.exponent + decimal.digits > 0);
}

// Any number. `p` is past the sign.
const char* scanUnsigned(const char* p, const char* last, double& value) {
  const char* const digits = p;
  Decimal decimal;
  for (; p != last && isDigit(*p); ++p) decimal.take(*p, false);
  std::ptrdiff_t count = p - digits;
  if (p != last && *p == '.') {
    const char* const fraction = ++p;
    for (; p != last && isDigit(*p); ++p) decimal.take(*p, true);
    count += p - fraction;
  }
  if (count == 0) return nullptr;
  p = scanExponent(p, last, 'e', decimal.exponent);
  value = valueOf(decimal, digits, p);
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
  value = static_cast<double>(static_cast<std::int64_t>(mantissa)) / kExactPowers[fraction];
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

// Whether a hexadecimal number out of range is so because it is large: by how many bits before the point its first
// digit other than 0 stands.
bool isLargeHexadecimal(std::string_view text) {
  std::int64_t bits = 0;
  bool fraction = false;
  bool leading = true;
  const char* p = text.data();
  const char* const last = p + text.size();
  for (; p != last && lower(*p) != 'p'; ++p) {
    if (*p == '.') {
      fraction = true;
      continue;
    }
    leading = leading && *p == '0';
    if (leading && fraction) bits -= 4;
    if (!leading && !fraction) bits += 4;
  }
  scanExponent(p, last, 'p', bits);
  return bits > 0;
}

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
  if (hexadecimal) return beyondRange<float>(isLargeHexadecimal(text));
  double wide = 0;
  scanUnsigned(text.data(), last, wide);
  return beyondRange<float>(wide > 1);
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
