#include "check/commas.h"

namespace halvo {

namespace {

constexpr std::string_view kBlanks = " \n";
constexpr std::string_view kDigits = "0123456789";

bool isIn(std::string_view set, char c) { return set.find(c) != std::string_view::npos; }

}  // namespace

std::optional<std::string_view> misplacedComma(std::string_view data) {
  bool followsNumber = false;
  for (std::size_t i = 0; i < data.size(); ++i) {
    if (data[i] == ',') {
      const std::size_t next = data.find_first_not_of(kBlanks, i + 1);
      const bool precedesNumber =
          next != std::string_view::npos && (isIn(kDigits, data[next]) || isIn("+-.", data[next]));
      if (!followsNumber || !precedesNumber) return data.substr(i);
      followsNumber = false;
    } else if (!isIn(kBlanks, data[i])) {
      followsNumber = isIn(kDigits, data[i]) || data[i] == '.';
    }
  }
  return std::nullopt;
}

std::optional<std::string_view> trailingPoint(std::string_view data) {
  for (std::size_t i = data.find('.'); i != std::string_view::npos; i = data.find('.', i + 1))
    if (i + 1 == data.size() || !isIn(kDigits, data[i + 1])) return data.substr(i);
  return std::nullopt;
}

}  // namespace halvo
