#include "platform/foundation/calendar.h"

#include <algorithm>
#include <cmath>
#include <ctime>

namespace quellaro {

namespace {

constexpr std::int64_t kSecondsPerDay = 86400;
// Well inside what a calendar of the C library can say, whose years have 32 bits.
constexpr double kFarthest = 1e15;

std::int64_t wholeSecondsSince1970(NSDate date) {
  const double seconds = date.timeIntervalSince1970();
  if (std::isnan(seconds)) return static_cast<std::int64_t>(kFarthest);
  return static_cast<std::int64_t>(std::floor(std::clamp(seconds, -kFarthest, kFarthest)));
}

// Days since 1970 to year, month and day, by counting in eras of 400 years, which all have as many days. Years begin
// with March here, so that the leap day comes last.
NSDateComponents dayFields(std::int64_t daysSince1970) {
  constexpr std::int64_t kDaysPerEra = 146097;
  constexpr std::int64_t kDaysFromYear0 = 719468;  // from 0000-03-01 to 1970-01-01
  const std::int64_t days = daysSince1970 + kDaysFromYear0;
  const std::int64_t era = (days >= 0 ? days : days - (kDaysPerEra - 1)) / kDaysPerEra;
  const std::int64_t day = days - era * kDaysPerEra;
  const std::int64_t yearOfEra = (day - day / 1460 + day / 36524 - day / (kDaysPerEra - 1)) / 365;
  const std::int64_t dayOfYear = day - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::int64_t month = (5 * dayOfYear + 2) / 153;  // 0 is March
  NSDateComponents fields;
  fields.day = static_cast<int>(dayOfYear - (153 * month + 2) / 5 + 1);
  fields.month = static_cast<int>(month < 10 ? month + 3 : month - 9);
  fields.year = yearOfEra + era * 400 + (fields.month <= 2 ? 1 : 0);
  return fields;
}

}  // namespace

NSDateComponents NSCalendar::componentsInUTC(NSDate date) {
  const std::int64_t seconds = wholeSecondsSince1970(date);
  const std::int64_t days = (seconds >= 0 ? seconds : seconds - (kSecondsPerDay - 1)) / kSecondsPerDay;
  const int rest = static_cast<int>(seconds - days * kSecondsPerDay);
  NSDateComponents fields = dayFields(days);
  fields.hour = rest / 3600;
  fields.minute = rest / 60 % 60;
  fields.second = rest % 60;
  return fields;
}

NSDateComponents NSCalendar::currentComponents(NSDate date) {
  const auto seconds = static_cast<std::time_t>(wholeSecondsSince1970(date));
  std::tm local{};
  // localtime_r alone need not notice that the zone has changed.
  tzset();
  if (localtime_r(&seconds, &local) == nullptr) return componentsInUTC(date);
  return {
      local.tm_year + std::int64_t{1900}, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

}  // namespace quellaro
