#include "platform/foundation/calendar.h"

#include <algorithm>
#include <cmath>
#include <ctime>

namespace quellaro {

namespace {

// Well inside what a calendar of the C library can say, whose years have 32 bits.
constexpr double kFarthest = 1e15;

std::time_t wholeSecondsSince1970(NSDate date) {
  const double seconds = date.timeIntervalSince1970();
  if (std::isnan(seconds)) return static_cast<std::time_t>(kFarthest);
  return static_cast<std::time_t>(std::floor(std::clamp(seconds, -kFarthest, kFarthest)));
}

NSDateComponents componentsOf(const std::tm& fields) {
  return {fields.tm_year + std::int64_t{1900},
          fields.tm_mon + 1,
          fields.tm_mday,
          fields.tm_hour,
          fields.tm_min,
          fields.tm_sec};
}

}  // namespace

NSDateComponents NSCalendar::componentsInUTC(NSDate date) {
  const std::time_t seconds = wholeSecondsSince1970(date);
  std::tm fields{};
  gmtime_r(&seconds, &fields);
  return componentsOf(fields);
}

NSDateComponents NSCalendar::currentComponents(NSDate date) {
  const std::time_t seconds = wholeSecondsSince1970(date);
  std::tm fields{};
  // localtime_r alone need not notice that the zone has changed.
  tzset();
  if (localtime_r(&seconds, &fields) == nullptr) return componentsInUTC(date);
  return componentsOf(fields);
}

}  // namespace quellaro
