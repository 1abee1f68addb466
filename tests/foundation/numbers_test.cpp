#include "platform/foundation/text/numbers.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

#include "platform/foundation/text/decimal_scan.h"

namespace quellaro {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Scan {
  std::string text;
  double value;
  std::size_t length;  // 0: no number
};

// Where C reads otherwise, or the random numbers below do not come. Behind each text stands what would make the
// eight-at-a-time way see it: the same answers with and without.
TEST(Numbers, DecimalGrammar) {
  const Scan cases[] = {
      {"-.5", -0.5, 3},
      {"+7", 7, 2},
      {"1.5.5", 1.5, 3},
      {"10-5", 10, 2},
      {"1e", 1, 1},
      {"1e+", 1, 1},
      {"1e-x", 1, 1},
      {"2.E1", 20, 4},
      {"-1e309", -kInfinity, 6},
      {"0.00000001e310", 1e302, 14},
      {"1e99999999999999999999", kInfinity, 22},
      {"1e-99999999999999999999", 0, 23},
      {"0e99999999999999999999", 0, 22},
      {"", 0, 0},
      {".", 0, 0},
      {"-.", 0, 0},
      {"+-5", 0, 0},
      {"- 5", 0, 0},
      {".e5", 0, 0},
      {"inf", 0, 0},
      {"nan", 0, 0},
      {"0x10", 0, 1},
  };
  for (const Scan& scan : cases)
    for (const char* behind : {"", " ", "z                   ", ",.5.5.5.5.5.5.5.5.5.5"}) {
      const std::string text = scan.text + behind;
      double value = 42;
      const char* end = scanDecimal(text.data(), text.data() + text.size(), value);
      EXPECT_EQ(end - text.data(), static_cast<std::ptrdiff_t>(scan.length)) << text;
      EXPECT_EQ(value, scan.length == 0 ? 42 : scan.value) << text;
    }
}

// C's own reading, in the "C" locale the tests run in, is the oracle.
TEST(Numbers, DecimalAgreesWithStrtodToTheLastBit) {
  std::mt19937_64 random(20240611);
  const auto upTo = [&random](unsigned bound) { return static_cast<unsigned>(random() % (bound + 1)); };
  for (int i = 0; i < 200000; ++i) {
    std::string text = upTo(2) == 0 ? "-" : "";
    for (unsigned n = upTo(i % 16 == 0 ? 30 : 9) + 1; n > 0; --n) text += static_cast<char>('0' + upTo(9));
    if (upTo(3) != 0) {
      text += '.';
      for (unsigned n = upTo(i % 16 == 0 ? 30 : 9); n > 0; --n) text += static_cast<char>('0' + upTo(9));
    }
    if (upTo(4) == 0) text += "e" + std::to_string(static_cast<int>(upTo(700)) - 350);
    text += upTo(1) == 0 ? "" : " 123456789 123456789";
    double value = 0;
    const char* end = scanDecimal(text.data(), text.data() + text.size(), value);
    char* expectedEnd = nullptr;
    const double expected = std::strtod(text.c_str(), &expectedEnd);
    ASSERT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(expected)) << text;
    ASSERT_EQ(end - text.data(), expectedEnd - text.c_str()) << text;
  }
}

TEST(Numbers, LenientReading) {
  const std::pair<const char*, double> cases[] = {
      {"300px", 300}, {"\t\n 12", 12}, {"", 0}, {"   ", 0}, {"px", 0}, {"-4.5e1x", -45}, {"1e999", kInfinity},
  };
  for (const auto& [text, value] : cases) EXPECT_EQ(doubleValue(text), value) << text;
}

TEST(Numbers, StrictFloat) {
  constexpr float kFloatInfinity = std::numeric_limits<float>::infinity();
  const std::pair<const char*, std::optional<float>> cases[] = {
      {"+2.5", 2.5F},
      {"-2.", -2.0F},
      {".5", 0.5F},
      {"1E-2", 0.01F},
      // Read as a 32-bit number at once; by way of a double it would be rounded twice.
      {"1.00000017881393432617187499", 1.00000011920928955078125F},
      {"-1e50", -kFloatInfinity},
      {"1e-60", 0.0F},
      {"1e999", kFloatInfinity},
      {"0X1.8p3", 12.0F},
      {"-0x.8", -0.5F},
      {"0x1p-200", 0.0F},
      {"0x0.0000000000000000000000000000000000000000000000000001p9", 0.0F},
      {"0x0.000000000000001p999", kFloatInfinity},
      {"-Infinity", -kFloatInfinity},
      {"INF", kFloatInfinity},
      {"", std::nullopt},
      {"2px", std::nullopt},
      {" 2", std::nullopt},
      {"-+2", std::nullopt},
      {".", std::nullopt},
      {"0x", std::nullopt},
      {"0x-1", std::nullopt},
      {"0xinf", std::nullopt},
      {"1p3", std::nullopt},
      {"nan(1)", std::nullopt},
  };
  for (const auto& [text, value] : cases) EXPECT_EQ(floatFromText(text), value) << text;
  EXPECT_TRUE(std::isnan(floatFromText("-NaN").value_or(0)));
}

TEST(Numbers, Printing) {
  struct Case {
    double value;
    const char* shortest;
    const char* description;
  };
  const Case cases[] = {
      {-0.0, "-0", "-0.0"},
      {0.1 + 0.2 + 0.3, "0.6000000000000001", "0.6000000000000001"},
      {1e22, "1e+22", "10000000000000000000000.0"},
      {0.00001, "1e-05", "0.00001"},
      {-kInfinity, "-inf", "-inf"},
      {-std::nan(""), "nan", "nan"},
  };
  for (const Case& one : cases) {
    std::string text;
    appendShortest(text, one.value);
    EXPECT_EQ(text, one.shortest);
    EXPECT_EQ(decimalDescription(one.value), one.description);
  }
  for (const double extreme : {5e-324, -2.2250738585072014e-308, 1.7976931348623157e308})
    EXPECT_EQ(doubleValue(decimalDescription(extreme)), extreme);
}

}  // namespace
}  // namespace quellaro
