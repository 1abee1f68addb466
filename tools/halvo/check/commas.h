#pragma once

#include <optional>
#include <string_view>

// What the engine's scanner passes over in lists of numbers, and other programs do not.
namespace halvo {

// From the first comma that does not stand between two numbers.
std::optional<std::string_view> misplacedComma(std::string_view data);

// From the first number that ends in its point.
std::optional<std::string_view> trailingPoint(std::string_view data);

}  // namespace halvo
