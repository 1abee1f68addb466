#pragma once

#include <cstdint>

#include "platform/foundation/date.h"

namespace quellaro {

// A date's fields in the Gregorian calendar, which is taken to hold at all times. The year before 1 is 0.
struct NSDateComponents {
  std::int64_t year = 1970;
  int month = 1;  // 1 to 12
  int day = 1;
  int hour = 0;
  int minute = 0;
  int second = 0;
};

// Any thread. A date some 30 million years from here, or none at all (not a number), gives the fields of the last date
// that can be said.
class NSCalendar {
 public:
  // In the device's time zone as it is at this moment: the TZ variable, or /etc/localtime when there is none.
  static NSDateComponents currentComponents(NSDate date);
  static NSDateComponents componentsInUTC(NSDate date);
};

}  // namespace quellaro
