#include <gtest/gtest.h>

#include <regex>
#include <set>

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

}  // namespace
}  // namespace quellaro
