#include "platform/foundation/scanner.h"

#include <gtest/gtest.h>

#include <limits>

namespace quellaro {
namespace {

constexpr NSCharacterSet kBlanks{" ,"};
constexpr NSCharacterSet kLetters{"abc"};

TEST(Scanner, SkipsThenScansAndAFailureMovesNothing) {
  NSScanner scanner(" ,abca 12,abc", kBlanks);
  EXPECT_FALSE(scanner.scanDouble());
  EXPECT_FALSE(scanner.scanString("b"));
  EXPECT_EQ(scanner.scanCharacters(kLetters), "abca");
  EXPECT_FALSE(scanner.scanCharacters(kLetters));
  EXPECT_FALSE(scanner.isAtEnd());
  EXPECT_EQ(scanner.scanDouble(), 12);
  EXPECT_TRUE(scanner.scanString("ABC"));
  EXPECT_TRUE(scanner.isAtEnd());
  EXPECT_FALSE(scanner.scanDouble());

  NSScanner trailing("1 , ", kBlanks);
  EXPECT_FALSE(trailing.isAtEnd());
  EXPECT_EQ(trailing.scanDouble(), 1);
  EXPECT_TRUE(trailing.isAtEnd());
}

TEST(Scanner, Literals) {
  NSScanner scanner("Rotate(5", kBlanks);
  EXPECT_FALSE(scanner.scanString("rotates"));
  EXPECT_FALSE(scanner.scanString("rotate(55"));
  EXPECT_FALSE(scanner.scanString(""));
  EXPECT_TRUE(scanner.scanString("rotate"));
  // '[' and '{' differ as upper and lower case letters do.
  EXPECT_FALSE(NSScanner("{", kBlanks).scanString("["));
}

TEST(Scanner, HexadecimalNumbers) {
  const std::pair<const char*, std::optional<std::uint64_t>> cases[] = {
      {"ff00aaff", 0xff00aaff},
      {"FFz", 0xff},
      {"0xff", 0xff},
      {"0Xff", 0xff},
      {"0x", 0},
      {"0xg", 0},
      {" ,12", 0x12},
      {"00xff", 0},
      {"ffffffffffffffff", std::numeric_limits<std::uint64_t>::max()},
      {"10000000000000000", std::numeric_limits<std::uint64_t>::max()},
      {"100000000000000000000000", std::numeric_limits<std::uint64_t>::max()},
      {"00000000000000000000ff", 0xff},
      {"", std::nullopt},
      {"-1", std::nullopt},
      {"none", std::nullopt},
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
  EXPECT_TRUE(scanner.getScannedString("word", &text));
  EXPECT_EQ(text, "word");

  NSScanner unseen("ab 1 word", kBlanks);
  EXPECT_TRUE(unseen.getScannedCharacters(kLetters, nullptr));
  EXPECT_TRUE(unseen.getScannedDouble(nullptr));
  EXPECT_TRUE(unseen.getScannedString("word", nullptr));
  EXPECT_TRUE(unseen.isAtEnd());
}

}  // namespace
}  // namespace quellaro
