#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/date.h"

namespace quellaro {

// Writes dates in UTC by a pattern of Unicode date fields: yyyy, MM, dd, HH, mm, ss and SSS, with text between
// apostrophes taken as it is, as are all characters but ASCII letters. Other letters stand for nothing. Immutable: any
// thread may use a shared one.
class NSDateFormatter {
 public:
  explicit NSDateFormatter(std::string_view dateFormat);

  // Fields are cut off, not rounded: 42.9 ms are 042. A year has at least four digits and, like the field itself, no
  // sign.
  std::string stringFromDate(NSDate date) const;

 private:
  // A run of one letter, or literal text.
  struct Piece {
    char field;  // '\0' for text
    std::string text;
  };
  std::vector<Piece> pieces_;
};

}  // namespace quellaro
