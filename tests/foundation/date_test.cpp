#include <gtest/gtest.h>

#include <cmath>
#include <ctime>
#include <limits>
#include <regex>
#include <set>

#include "platform/foundation/calendar.h"
#include "platform/foundation/date_formatter.h"
#include "platform/foundation/uuid.h"

namespace quellaro {
namespace {

TEST(UUIDTest, IsRandomVersion4InUpperCase) {
  const std::regex form("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
  std::set<std::string> seen;
  for (int i = 0; i < 100; ++i) {
    const std::string text = UUID().uuidString();
    EXPECT_TRUE(std::regex_match(text, form)) << text;
    EXPECT_TRUE(seen.insert(text).second) << text;
  }
}

TEST(DateFormatter, ColonBeforeMilliseconds) {
  const NSDateFormatter formatter("yyyy-MM-dd'T'HH:mm:ss:SSS'Z'");
  const std::pair<double, const char*> cases[] = {
      {1719828540.001, "2024-07-01T10:09:00:001Z"},     {1719828540.0429, "2024-07-01T10:09:00:042Z"},
      {1719828540.9999997, "2024-07-01T10:09:01:000Z"}, {-0.25, "1969-12-31T23:59:59:750Z"},
      {253402300800, "10000-01-01T00:00:00:000Z"},      {-62135596801, "0001-12-31T23:59:59:000Z"},
  };
  for (const auto& [seconds, text] : cases)
    EXPECT_EQ(formatter.stringFromDate(NSDate::withTimeIntervalSince1970(seconds)), text) << seconds;
  EXPECT_EQ(NSDateFormatter("''d.M'''yy'yyyyyy q").stringFromDate(NSDate::withTimeIntervalSince1970(0)),
            "1.1yy001970 ");
  for (const double seconds : {1e300, -1e300, std::numeric_limits<double>::infinity(), std::nan("")}) {
    EXPECT_FALSE(formatter.stringFromDate({seconds}).empty());
    EXPECT_NE(NSCalendar::currentComponents({seconds}).month, 0);
  }
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

}  // namespace
}  // namespace quellaro
