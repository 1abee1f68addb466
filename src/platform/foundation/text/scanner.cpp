#include "platform/foundation/text/scanner.h"

#include <algorithm>
#include <limits>

#include "platform/foundation/text/decimal_scan.h"

namespace quellaro {

namespace {

constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// 0 to 15, or 16 for any other character.
constexpr unsigned hexDigit(char c) {
  if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
  const char small = lower(c);
  return small >= 'a' && small <= 'f' ? static_cast<unsigned>(small - 'a') + 10 : 16;
}

}  // namespace

std::size_t NSScanner::scanDoubles(std::span<double> into) {
  // A pair alone is not worth a look at sixty-four characters.
  bool many = into.size() > 2;
  std::size_t count = 0;
  while (count < into.size()) {
    const char* const start = afterSkipped();
    // Most often a letter ends a list.
    if (start == end_ || lower(*start) >= 'a') break;
    const std::size_t read = many ? scanManyDoubles(start, into.subspan(count)) : 0;
    // Once that fails the rest is read one by one: unusual numbers seldom come alone.
    many = read > 0;
    if (!many && !scanAnyDouble(start, into[count])) break;
    count += many ? read : 1;
  }
  return count;
}

std::size_t NSScanner::scanManyDoubles(const char* const start, std::span<double> into) {
  if (into.size() < 2 || skipped_->byLowBits() == nullptr || !canScanNumberWindow()) return 0;
  const char* p = start;
  std::array<char, kNumberWindow> padded;
  if (end_ - start < kNumberWindow) {
    padded.fill('\0');
    std::copy(start, end_, padded.begin());
    p = padded.data();
  }
  const char* const first = p;
  const std::size_t count = scanNumberWindow(p, *skipped_->byLowBits(), into);
  if (count > 0) at_ = start + (p - first);
  return count;
}

bool NSScanner::scanAnyDouble(const char* start, double& value) {
  const char* const end = scanDecimal(start, end_, value);
  if (end == start) return false;
  at_ = end;
  return true;
}

std::optional<std::string_view> NSScanner::scanCharacters(const NSCharacterSet& set) {
  const char* const start = afterSkipped();
  const char* p = start;
  while (p != end_ && set.contains(*p)) ++p;
  if (p == start) return std::nullopt;
  at_ = p;
  return std::string_view(start, static_cast<std::size_t>(p - start));
}

bool NSScanner::scanString(std::string_view literal) {
  const char* const start = afterSkipped();
  if (literal.empty() || static_cast<std::size_t>(end_ - start) < literal.size()) return false;
  for (std::size_t i = 0; i < literal.size(); ++i)
    if (lower(start[i]) != lower(literal[i])) return false;
  at_ = start + literal.size();
  return true;
}

std::optional<std::uint64_t> NSScanner::scanHexLongLong() {
  const char* p = afterSkipped();
  if (end_ - p > 2 && p[0] == '0' && lower(p[1]) == 'x' && hexDigit(p[2]) < 16) p += 2;
  const char* const start = p;
  constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();
  std::uint64_t value = 0;
  bool fits = true;
  for (; p != end_ && hexDigit(*p) < 16; ++p) {
    fits = fits && value <= kLargest >> 4;
    value = value << 4 | hexDigit(*p);
  }
  if (p == start) return std::nullopt;
  at_ = p;
  return fits ? value : kLargest;
}

bool NSScanner::getScannedCharacters(const NSCharacterSet& from, std::string* into) {
  const std::optional<std::string_view> characters = scanCharacters(from);
  if (characters && into != nullptr) *into = *characters;
  return characters.has_value();
}

bool NSScanner::getScannedDouble(double* into) {
  const std::optional<double> number = scanDouble();
  if (number && into != nullptr) *into = *number;
  return number.has_value();
}

bool NSScanner::getScannedString(std::string_view literal, std::string* into) {
  const bool scanned = scanString(literal);
  if (scanned && into != nullptr) *into = literal;
  return scanned;
}

}  // namespace quellaro
