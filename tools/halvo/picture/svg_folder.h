#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace halvo {

// The part of a file's name before ".svg" or ".svgz"; nothing for other files and hidden ones.
std::optional<std::string_view> svgStemOf(std::string_view name);

// The names of a folder's SVG files in natural order. Nothing of a folder's folders.
std::vector<std::string> svgNamesIn(const std::string& folder);

// Less, equal or greater than 0, as people count: "frame2" before "frame10", whatever the case of letters.
int compareNaturally(std::string_view a, std::string_view b);

}  // namespace halvo
