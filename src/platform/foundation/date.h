#pragma once

#include "platform/dispatch/clock.h"

namespace quellaro {

// A point in time. Kept as it is stored in files, in seconds since 2001-01-01 00:00:00 UTC, so that a stored date reads
// back as the same double.
struct NSDate {
  static constexpr double kReferenceDateSince1970 = 978307200;

  double timeIntervalSinceReferenceDate = 0;

  static NSDate withTimeIntervalSince1970(double seconds) { return {seconds - kReferenceDateSince1970}; }
  // By the wall clock.
  static NSDate now() { return withTimeIntervalSince1970(secondsSince1970()); }
  double timeIntervalSince1970() const { return timeIntervalSinceReferenceDate + kReferenceDateSince1970; }

  friend bool operator==(const NSDate&, const NSDate&) = default;
  friend bool operator<(const NSDate& a, const NSDate& b) {
    return a.timeIntervalSinceReferenceDate < b.timeIntervalSinceReferenceDate;
  }
};

}  // namespace quellaro
