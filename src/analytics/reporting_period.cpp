#include "analytics/reporting_period.h"

#include "platform/foundation/calendar.h"

namespace quellaro {

bool isPeriodElapsed(NSDate start, const std::optional<std::string>& frequency) {
  const NSDateComponents then = NSCalendar::currentComponents(start);
  const NSDateComponents now = NSCalendar::currentComponents(NSDate::now());
  const int monthsInPeriod = frequency == "M" ? 1 : 3;
  return then.year != now.year || (then.month - 1) / monthsInPeriod != (now.month - 1) / monthsInPeriod;
}

}  // namespace quellaro
