#pragma once

#include <optional>
#include <string>
#include <string_view>

// Numbers in text, the same under every locale: C's own functions follow whatever locale the host has chosen.
namespace quellaro {

// The longest decimal number at the start, white space before it skipped; 0 when there is none.
double doubleValue(std::string_view text);

// The whole text as a 32-bit number, or nothing: decimal or hexadecimal ("0x1.8p3"), "inf", "infinity" or "nan" in any
// case, each with an optional sign; no white space, no unit. Too large or too small is as for scanDecimal.
std::optional<float> floatFromText(std::string_view text);

// Appends the shortest form that reads back as the same double, with an exponent where that is shorter: "10", "0.1",
// "1e+22", "-0"; "inf", "-inf" or "nan" when it is not finite.
void appendShortest(std::string& text, double value);

// As the platform prints a double: the shortest digits that read back, never an exponent, at least one fractional
// digit ("0.0", "2.48", "1700000000.25").
std::string decimalDescription(double value);

}  // namespace quellaro
