#pragma once

#include <string_view>

namespace halvo {

// What a file that is no MPEG audio is by its first bytes, such as "a WAV file"; empty for what is not known.
std::string_view containerNameOf(std::string_view bytes);

}  // namespace halvo
