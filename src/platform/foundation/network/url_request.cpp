#include "platform/foundation/network/url_request.h"

#include <algorithm>

namespace quellaro {

namespace {

constexpr char toLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool isSameField(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return toLower(x) == toLower(y); });
}

bool isFieldValue(std::string_view value) {
  return std::none_of(value.begin(), value.end(), [](unsigned char c) { return c == 0x7f || (c < ' ' && c != '\t'); });
}

}  // namespace

bool isHTTPToken(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
    return c > ' ' && c < 0x7f && std::string_view("\"(),/:;<=>?@[\\]{}").find(c) == std::string_view::npos;
  });
}

void URLRequest::addValue(std::string_view value, std::string_view headerField) {
  if (!isHTTPToken(headerField) || !isFieldValue(value)) return;
  for (HeaderField& field : headerFields_) {
    if (!isSameField(field.first, headerField)) continue;
    field.second += ',';
    field.second += value;
    return;
  }
  headerFields_.emplace_back(headerField, value);
}

}  // namespace quellaro
