#pragma once

#include <string_view>

namespace halvo {

// What a text is instead of UTF-8, such as "UTF-16", or what it is packed in; empty for UTF-8 and for what is not
// known.
std::string_view foreignEncodingOf(std::string_view text);

}  // namespace halvo
