#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <set>

#include "platform/foundation/calendar.h"
#include "platform/foundation/date_formatter.h"
#include "platform/foundation/uuid.h"
#include "support/uuid_text.h"

namespace quellaro {
namespace {

TEST(UUIDTest, IsRandomVersion4InUpperCase) {
  std::set<std::string> seen;
  for (int i = 0; i < 1000; ++i) {
    const std::string text = UUID().uuidString();
    EXPECT_TRUE(isUUIDText(text) && text[14] == '4' && std::string("89AB").find(text[19]) != std::string::npos) << text;
    EXPECT_TRUE(seen.insert(text).second) << text;
  }
}

TEST(DateFormatter, ColonBeforeMilliseconds) {
  const NSDateFormatter formatter("yyyy-MM-dd'T'HH:mm:ss:SSS'Z'");
  const std::pair<double, const char*> cases[] = {
      {1719828540.042, "2024-07-01T10:09:00:042Z"},
      {1719828540, "2024-07-01T10:09:00:000Z"},
      {1719828540.0429, "2024-07-01T10:09:00:042Z"},
      {1719828540.9994, "2024-07-01T10:09:00:999Z"},
      {1719828540.9999999, "2024-07-01T10:09:01:000Z"},
      {0, "1970-01-01T00:00:00:000Z"},
      {-0.25, "1969-12-31T23:59:59:750Z"},
      {951825599.5, "2000-02-29T11:59:59:500Z"},
      {-2203891200, "1900-03-01T00:00:00:000Z"},
      {253402300800, "10000-01-01T00:00:00:000Z"},
      {-62135596800, "0001-01-01T00:00:00:000Z"},
      {-62135596801, "0001-12-31T23:59:59:000Z"},
  };
  for (const auto& [seconds, text] : cases)
    EXPECT_EQ(formatter.stringFromDate(NSDate::withTimeIntervalSince1970(seconds)), text) << seconds;
  for (const double seconds : {1e300, -1e300, std::numeric_limits<double>::infinity(), std::nan("")})
    EXPECT_FALSE(formatter.stringFromDate({seconds}).empty());
  EXPECT_EQ(NSDateFormatter("''d.M'''yy'yyyyyy q").stringFromDate(NSDate::withTimeIntervalSince1970(0)),
            "1.1yy001970 ");
}

// The C library counts days in its own way; it knows no year 0 different from ours.
TEST(Calendar, AgreesWithTheCLibrary) {
  for (double seconds = -70e9; seconds < 260e9; seconds += 86400.0 * 97 + 12345) {
    const auto time = static_cast<std::time_t>(seconds);
    std::tm fields{};
    ASSERT_NE(gmtime_r(&time, &fields), nullptr);
    const NSDateComponents expected{fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday,
                                    fields.tm_hour,        fields.tm_min,     fields.tm_sec};
    ASSERT_EQ(NSCalendar::componentsInUTC(NSDate::withTimeIntervalSince1970(seconds)), expected) << seconds;
  }
}

TEST(Calendar, FollowsTheZoneAtEveryCall) {
  struct Case {
    const char* zone;
    double seconds;
    NSDateComponents expected;
  };
  const Case cases[] = {
      {"UTC", 1704067199, {2023, 12, 31, 23, 59, 59}},
      {"JST-9", 1704067199, {2024, 1, 1, 8, 59, 59}},
      {"HST10", 1704067200, {2023, 12, 31, 14, 0, 0}},
      {"EST5EDT,M3.2.0,M11.1.0", 1710054000 - 1, {2024, 3, 10, 1, 59, 59}},
      {"EST5EDT,M3.2.0,M11.1.0", 1710054000, {2024, 3, 10, 3, 0, 0}},
      {"EST5EDT,M3.2.0,M11.1.0", 1730613600, {2024, 11, 3, 1, 0, 0}},
      {"UTC", -62167219200, {0, 1, 1, 0, 0, 0}},
  };
  for (const Case& c : cases) {
    setenv("TZ", c.zone, 1);
    EXPECT_EQ(NSCalendar::currentComponents(NSDate::withTimeIntervalSince1970(c.seconds)), c.expected)
        << c.zone << " " << c.seconds;
  }
  for (const double seconds : {1e300, -1e300, std::nan("")})
    EXPECT_NE(NSCalendar::currentComponents({seconds}).month, 0);
  unsetenv("TZ");
}

}  // namespace
}  // namespace quellaro
