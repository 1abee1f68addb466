#include "check/encoding.h"

#include "platform/foundation/text/utf8.h"

namespace halvo {

std::string_view foreignEncodingOf(std::string_view text) {
  using namespace std::string_view_literals;
  if (text.starts_with("\x1F\x8B"sv)) return "compressed with gzip, as .svgz files are";
  for (const std::string_view start : {"\xFF\xFE"sv, "\xFE\xFF"sv, "<\0"sv, "\0<"sv, "[\0"sv, "\0["sv})
    if (text.starts_with(start)) return "UTF-16";
  // No text has a NUL.
  if (text.empty() || text.find('\0') != std::string_view::npos || quellaro::isValidUTF8(text)) return {};
  return "Latin-1 (ISO 8859-1) or another encoding of single bytes";
}

}  // namespace halvo
