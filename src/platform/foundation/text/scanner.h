#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/foundation/text/number_window.h"

namespace quellaro {

// A set of ASCII characters.
class NSCharacterSet {
 public:
  constexpr explicit NSCharacterSet(std::string_view members) {
    // No character with these low bits is that one.
    for (std::size_t bits = 0; bits < byLowBits_.size(); ++bits) byLowBits_[bits] = static_cast<char>(bits ^ 1);
    for (const char c : members) {
      // Refuses what is not ASCII.
      contains_.at(static_cast<std::size_t>(c)) = true;
      char& slot = byLowBits_[static_cast<std::size_t>(c) % byLowBits_.size()];
      lowBitsDiffer_ = lowBitsDiffer_ && (slot == c || (slot ^ c) % 16 != 0);
      slot = c;
    }
  }
  constexpr bool contains(char c) const {
    const auto code = static_cast<unsigned char>(c);
    return code < contains_.size() && contains_[code];
  }
  // Null when two members have their four low bits in common.
  constexpr const SeparatorTable* byLowBits() const { return lowBitsDiffer_ ? &byLowBits_ : nullptr; }

 private:
  std::array<bool, 128> contains_{};
  SeparatorTable byLowBits_{};
  bool lowBitsDiffer_ = true;
};

// Reads a text from the front. Every scan first passes over the characters to be skipped and then either succeeds and
// moves on, or fails and leaves the position where it was, skipped characters included. Text and set must outlive it.
// A set of skipped characters has no part of a number in it.
class NSScanner {
 public:
  NSScanner(std::string_view text, const NSCharacterSet& charactersToBeSkipped)
      : at_(text.data()), end_(text.data() + text.size()), skipped_(&charactersToBeSkipped) {}

  // Whether nothing but skipped characters is left.
  bool isAtEnd() const { return afterSkipped() == end_; }

  // What has not been read yet.
  std::string_view rest() const { return {at_, static_cast<std::size_t>(end_ - at_)}; }

  // A decimal number, as scanDecimal reads it.
  std::optional<double> scanDouble() {
    double value = 0;
    return scanDoubles({&value, 1}) == 1 ? std::optional(value) : std::nullopt;
  }

  // As many numbers in a row as there is room for, or as there are, and how many these were.
  std::size_t scanDoubles(std::span<double> into);

  // The longest run of characters from the set, at least one.
  std::optional<std::string_view> scanCharacters(const NSCharacterSet& set);

  // The literal, without regard to the case of ASCII letters.
  bool scanString(std::string_view literal);

  // Hexadecimal digits after an optional "0x" or "0X". What does not fit becomes the largest 64-bit number.
  std::optional<std::uint64_t> scanHexLongLong();

  // The older style: whether the scan succeeded, the result in an out-parameter, which may be null and is left alone
  // on failure.
  bool getScannedCharacters(const NSCharacterSet& from, std::string* into);
  bool getScannedDouble(double* into);
  bool getScannedString(std::string_view literal, std::string* into);

 private:
  // Reads numbers from `start`, where nothing is left to skip, many at a time, and gives how many; none when the next
  // has to be read by itself.
  std::size_t scanManyDoubles(const char* start, std::span<double> into);
  // Reads the number at `start`, of any form.
  bool scanAnyDouble(const char* start, double& value);

  const char* afterSkipped() const {
    const char* p = at_;
    while (p != end_ && skipped_->contains(*p)) ++p;
    return p;
  }

  const char* at_;
  const char* end_;
  const NSCharacterSet* skipped_;
};

}  // namespace quellaro
