#include <gtest/gtest.h>

#include "analytics/reporting_period.h"
#include "analytics_fixture.h"
#include "platform/foundation/storage/bundle.h"

namespace quellaro {
namespace {

double utc(int year, int month, int day, int hour = 12, int minute = 0, int second = 0) {
  std::tm fields{second, minute, hour, day, month - 1, year - 1900, 0, 0, 0, 0, nullptr};
  return static_cast<double>(timegm(&fields));
}

class DueRule : public AnalyticsFixture {};

TEST_F(DueRule, ComparesCalendarFieldsOfTheDevice) {
  struct Case {
    const char* zone;
    double start, now;
    bool month, quarter;
  };
  constexpr const char* kNewYork = "EST5EDT,M3.2.0,M11.1.0";
  const Case cases[] = {
      {"UTC", utc(2024, 1, 31), utc(2024, 2, 1), true, false},
      {"UTC", utc(2024, 1, 1), utc(2024, 1, 31), false, false},
      {"UTC", utc(2024, 3, 31, 23, 59, 59), utc(2024, 4, 1, 0), true, true},
      {"UTC", utc(2024, 9, 30), utc(2024, 10, 1), true, true},
      {"UTC", utc(2024, 10, 1), utc(2024, 12, 31, 23, 59, 59), true, false},
      {"UTC", utc(2023, 3, 15), utc(2024, 3, 15), true, true},
      // The same instants fall into other months elsewhere.
      {"JST-9", utc(2023, 12, 31, 14, 59, 59), utc(2023, 12, 31, 15), true, true},
      {"HST10", utc(2023, 12, 31, 23), utc(2024, 1, 1, 9, 59, 59), false, false},
      // An autumn whose October ends in summer time.
      {kNewYork, utc(2024, 11, 1, 3, 59, 59), utc(2024, 11, 1, 4), true, false},
      {kNewYork, utc(2024, 12, 1, 4, 59, 59), utc(2024, 12, 1, 5), true, false},
  };
  for (const Case& c : cases) {
    setenv("TZ", c.zone, 1);
    wallClock_.set(c.now);
    const NSDate start = NSDate::withTimeIntervalSince1970(c.start);
    EXPECT_EQ(isPeriodElapsed(start, "M"), c.month) << c.zone << " " << c.start;
    EXPECT_EQ(isPeriodElapsed(start, "m"), c.quarter) << c.zone << " " << c.start;
    EXPECT_EQ(isPeriodElapsed(start, std::nullopt), c.quarter) << c.zone << " " << c.start;
  }
}

TEST_F(DueRule, TheEarliestRecordDecidesAndAClockSetBackLosesNothing) {
  play("first");
  wallClock_.advance(10 * kDay);
  play("second");
  play("first");
  wallClock_.set(kStart - 20 * kDay);
  play("first");
  EXPECT_EQ(current(), "second/shop:1 first/shop:3");
  wallClock_.set(utc(2024, 3, 1, 0));
  play("third");
  EXPECT_EQ(endpoint_.sent, 1);
}

TEST_F(DueRule, VersionsMakeTheWholeFileDue) {
  play("shop", "1");
  play("other", "1");
  manager_->merchant = merchantNamed("Second");
  play("third", "9");
  EXPECT_EQ(endpoint_.sent, 0) << "another cue may have another version";
  play("shop", "2");
  EXPECT_EQ(endpoint_.sent, 1) << "whatever the merchant";
  endpoint_.answer(kAccepted);
  EXPECT_EQ(current(), "shop/second:1");

  writeBundleFile("Info.json", R"({"CFBundleShortVersionString": "2.0.1"})");
  NSBundle::setLibraryPath(bundle().string());
  play("another", "1");
  EXPECT_EQ(endpoint_.sent, 2);
}

}  // namespace
}  // namespace quellaro
