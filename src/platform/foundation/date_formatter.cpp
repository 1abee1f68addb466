#include "platform/foundation/date_formatter.h"

#include <cmath>
#include <cstdint>

#include "platform/foundation/calendar.h"

namespace quellaro {

namespace {

constexpr bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// A date's fields, with the milliseconds of its second.
struct Fields {
  NSDateComponents date;
  int millisecond = 0;
};

Fields fieldsOf(NSDate date) {
  // The double nearest to 42 ms may lie just below it. A microsecond is the finest that today's dates resolve, so
  // rounding to that finds what was meant before anything is cut off.
  const double seconds = date.timeIntervalSince1970();
  double whole = std::floor(seconds);
  double microseconds = std::round((seconds - whole) * 1e6);
  if (microseconds >= 1e6) {
    whole += 1;
    microseconds = 0;
  }
  const int millisecond = std::isfinite(microseconds) ? static_cast<int>(microseconds / 1000) : 0;
  return {NSCalendar::componentsInUTC(NSDate::withTimeIntervalSince1970(whole)), millisecond};
}

std::int64_t valueOf(char field, const Fields& fields) {
  switch (field) {
    case 'y':
      // Counted within its era: the year 0 is the first before the common era.
      return fields.date.year > 0 ? fields.date.year : 1 - fields.date.year;
    case 'M':
      return fields.date.month;
    case 'd':
      return fields.date.day;
    case 'H':
      return fields.date.hour;
    case 'm':
      return fields.date.minute;
    case 's':
      return fields.date.second;
    default:
      return fields.millisecond;
  }
}

}  // namespace

NSDateFormatter::NSDateFormatter(std::string_view dateFormat) {
  bool quoted = false;
  for (const char c : dateFormat) {
    if (c == '\'') {
      quoted = !quoted;
      continue;
    }
    const char field = !quoted && isLetter(c) ? c : '\0';
    if (pieces_.empty() || pieces_.back().field != field) pieces_.push_back({field, ""});
    pieces_.back().text += c;
  }
}

std::string NSDateFormatter::stringFromDate(NSDate date) const {
  constexpr std::string_view kKnownFields = "yMdHmsS";
  const Fields fields = fieldsOf(date);
  std::string text;
  for (const Piece& piece : pieces_) {
    if (piece.field == '\0') {
      text += piece.text;
    } else if (kKnownFields.find(piece.field) != std::string_view::npos) {
      const std::string digits = std::to_string(valueOf(piece.field, fields));
      if (digits.size() < piece.text.size()) text.append(piece.text.size() - digits.size(), '0');
      text += digits;
    }
  }
  return text;
}

}  // namespace quellaro
