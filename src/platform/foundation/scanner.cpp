#include "platform/foundation/scanner.h"

#include <limits>

#include "platform/foundation/decimal_scan.h"

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
  for (std::size_t i = 0; i < into.size(); ++i) {
#ifdef __SSE2__
    if (end_ - at_ >= sse2::kRoom) {
      const auto isSkipped = [this](char c) { return skipped_->contains(c); };
      if (const char* const end = sse2::scanListed(at_, isSkipped, into[i])) {
        at_ = end;
        continue;
      }
    }
#endif
    if (!scanAnyDouble(into[i])) return i;
  }
  return into.size();
}

bool NSScanner::scanAnyDouble(double& value) {
  const char* const start = afterSkipped();
  // Most often a letter ends a list.
  if (start == end_ || lower(*start) >= 'a') return false;
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
