#include "platform/foundation/text/scanner.h"

#include <gtest/gtest.h>

#include <bit>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "platform/foundation/text/decimal_scan.h"

namespace quellaro {
namespace {

constexpr NSCharacterSet kBlanks{" ,"};
constexpr NSCharacterSet kLetters{"abc"};

TEST(Scanner, SkipsThenScansAndAFailureMovesNothing) {
  NSScanner scanner(" ,abca 12,abc, ", kBlanks);
  EXPECT_FALSE(scanner.scanDouble());
  for (const char* other : {"b", "abcab", ""}) EXPECT_FALSE(scanner.scanString(other)) << other;
  EXPECT_EQ(scanner.scanCharacters(kLetters), "abca");
  EXPECT_FALSE(scanner.scanCharacters(kLetters));
  EXPECT_EQ(scanner.scanDouble(), 12);
  EXPECT_FALSE(scanner.isAtEnd());
  EXPECT_TRUE(scanner.scanString("ABC"));
  EXPECT_TRUE(scanner.isAtEnd());
  EXPECT_FALSE(scanner.scanDouble());
  // '[' and '{' differ as upper and lower case letters do.
  EXPECT_FALSE(NSScanner("{", kBlanks).scanString("["));
}

// Lists of numbers of every shape, next to each other in every way, read once as a list and once number by number. Most
// pieces are as in real lists, which are read many numbers at a time.
TEST(Scanner, AListReadsAsItsNumbersDo) {
  constexpr std::string_view kUsual[] = {"0",        "7.25",    "-12", "345.5", "-.5",
                                         "99999999", "1080.25", " -0", "1.",    ",-0."};
  constexpr std::string_view kPieces[] = {"0", "7", "12", "345", "99999999", "123456789", ".", "-",    "+",  " ",
                                          ",", "e", "E5", "-0",  ".5",       "1.",        "x", "\xc3", " -", "\n"};
  // The second set's members share their low bits.
  constexpr NSCharacterSet kSets[] = {NSCharacterSet{" ,\n"}, NSCharacterSet{" @,"}, NSCharacterSet{",() "}};
  std::minstd_rand random(7);
  for (int round = 0; round < 20000; ++round) {
    const NSCharacterSet& skipped = kSets[random() % std::size(kSets)];
    std::string text;
    for (auto pieces = random() % 48; pieces > 0; --pieces)
      text += random() % 12 == 0 ? kPieces[random() % std::size(kPieces)]
                                 : std::string(kUsual[random() % std::size(kUsual)]) + ",  ,"[random() % 4];
    // More may stand behind what is shown, and is not to be looked at.
    const std::string_view shown = std::string_view(text).substr(0, random() % (text.size() + 1));
    std::vector<double> expected;
    const char* p = shown.data();
    while (true) {
      const char* start = p;
      const char* const end = shown.data() + shown.size();
      while (start != end && skipped.contains(*start)) ++start;
      double value = 0;
      const char* const next = scanDecimal(start, end, value);
      if (next == start) break;
      expected.push_back(value);
      p = next;
    }
    // In one list, or in several.
    std::vector<double> numbers(expected.size() + 1);
    NSScanner scanner(shown, skipped);
    const std::size_t first = random() % numbers.size();
    ASSERT_EQ(scanner.scanDoubles(std::span(numbers).first(first)), first) << shown;
    ASSERT_EQ(scanner.scanDoubles(std::span(numbers).subspan(first)), expected.size() - first) << shown;
    ASSERT_EQ(scanner.rest().data(), p) << shown;
    numbers.pop_back();
    for (std::size_t i = 0; i < numbers.size(); ++i)
      ASSERT_EQ(std::bit_cast<std::uint64_t>(numbers[i]), std::bit_cast<std::uint64_t>(expected[i])) << shown;
  }
}

TEST(Scanner, HexadecimalNumbers) {
  constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();
  const std::pair<const char*, std::optional<std::uint64_t>> cases[] = {
      {" ,ff00aAFfg", 0xff00aaff},
      {"0Xff", 0xff},
      {"0xg", 0},
      {"00xff", 0},
      {"ffffffffffffffff", kLargest},
      {"10000000000000000", kLargest},
      {"00000000000000000000ff", 0xff},
      {"", std::nullopt},
      {"-1", std::nullopt},
      {"xff", std::nullopt},
  };
  for (const auto& [text, value] : cases) EXPECT_EQ(NSScanner(text, kBlanks).scanHexLongLong(), value) << text;
}

TEST(Scanner, OlderStyleLeavesTheResultAloneOnFailure) {
  NSScanner scanner("  ab 1.5 Word", kBlanks);
  std::string text = "before";
  double number = 42;
  EXPECT_FALSE(scanner.getScannedDouble(&number));
  EXPECT_FALSE(scanner.getScannedString("word", &text));
  EXPECT_EQ(number, 42);
  EXPECT_EQ(text, "before");
  EXPECT_TRUE(scanner.getScannedCharacters(kLetters, &text));
  EXPECT_EQ(text, "ab");
  EXPECT_FALSE(scanner.getScannedCharacters(kLetters, nullptr));
  EXPECT_TRUE(scanner.getScannedDouble(&number));
  EXPECT_EQ(number, 1.5);
  EXPECT_TRUE(scanner.getScannedString("word", nullptr));
}

}  // namespace
}  // namespace quellaro
