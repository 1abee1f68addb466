#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quellaro {

// Writes one compact JSON text, value after value. Inside an object every value follows its key().
class JSONWriter {
 public:
  JSONWriter& beginObject();
  JSONWriter& endObject();
  JSONWriter& beginArray();
  JSONWriter& endArray();
  JSONWriter& key(std::string_view name);
  // Invalid UTF-8 is written as U+FFFD: what comes out is always valid.
  JSONWriter& string(std::string_view value);
  JSONWriter& integer(std::int64_t value);
  // The shortest text that reads back as the same double; null for what JSON cannot say (infinite, not a number).
  JSONWriter& number(double value);
  JSONWriter& boolean(bool value);
  JSONWriter& null();
  // A value that is JSON text already.
  JSONWriter& raw(std::string_view json);

  const std::string& text() const { return text_; }
  std::string take() { return std::move(text_); }

 private:
  void separate();

  std::string text_;
  bool needsComma_ = false;
};

}  // namespace quellaro
