#include "platform/foundation/json/json_writer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "platform/foundation/text/utf8.h"

namespace quellaro {

namespace {

void appendEscaped(std::string& out, std::string_view text) {
  constexpr std::string_view kHexDigits = "0123456789abcdef";
  const auto isPlain = [](char c) { return static_cast<unsigned char>(c) >= 0x20 && c != '"' && c != '\\'; };
  while (!text.empty()) {
    const auto plain = static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isPlain) - text.begin());
    out += text.substr(0, plain);
    if (plain == text.size()) return;
    const char c = text[plain];
    text.remove_prefix(plain + 1);
    switch (c) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\t':
        out += "\\t";
        break;
      default:
        out += "\\u00";
        out += kHexDigits[static_cast<unsigned char>(c) >> 4];
        out += kHexDigits[static_cast<unsigned char>(c) & 15];
    }
  }
}

}  // namespace

void JSONWriter::separate() {
  if (needsComma_) text_ += ',';
  needsComma_ = true;
}

JSONWriter& JSONWriter::beginObject() {
  separate();
  text_ += '{';
  needsComma_ = false;
  return *this;
}

JSONWriter& JSONWriter::endObject() {
  text_ += '}';
  needsComma_ = true;
  return *this;
}

JSONWriter& JSONWriter::beginArray() {
  separate();
  text_ += '[';
  needsComma_ = false;
  return *this;
}

JSONWriter& JSONWriter::endArray() {
  text_ += ']';
  needsComma_ = true;
  return *this;
}

JSONWriter& JSONWriter::key(std::string_view name) {
  string(name);
  text_ += ':';
  needsComma_ = false;
  return *this;
}

JSONWriter& JSONWriter::string(std::string_view value) {
  separate();
  text_ += '"';
  if (isValidUTF8(value))
    appendEscaped(text_, value);
  else
    appendEscaped(text_, repairedUTF8(value));
  text_ += '"';
  return *this;
}

JSONWriter& JSONWriter::integer(std::int64_t value) {
  separate();
  text_ += std::to_string(value);
  return *this;
}

JSONWriter& JSONWriter::number(double value) {
  if (!std::isfinite(value)) return null();
  separate();
  std::array<char, 32> buffer;
  text_.append(buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr);
  return *this;
}

JSONWriter& JSONWriter::boolean(bool value) { return raw(value ? "true" : "false"); }

JSONWriter& JSONWriter::null() { return raw("null"); }

JSONWriter& JSONWriter::raw(std::string_view json) {
  separate();
  text_ += json;
  return *this;
}

}  // namespace quellaro
