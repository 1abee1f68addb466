#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/json/json_reader.h"

namespace quellaro {

// Reads one JSON value into a record, field by field, and remembers the first thing that is wrong: what was expected,
// what was found, and where. After that every read gives an empty value, so a record is read straight through and asked
// for its error once, at the end.
class JSONDecoder {
 public:
  explicit JSONDecoder(JSONValue root) : root_(root) {}

  JSONValue root() const { return root_; }
  const std::optional<NSError>& error() const { return error_; }
  // The first error stands.
  void fail(const std::string& path, std::string_view problem);

 private:
  JSONValue root_;
  std::optional<NSError> error_;
};

// One value of the document being decoded, and the path to it ("[0].cues.quellaro"; empty at the top).
class JSONField {
 public:
  static JSONField root(JSONDecoder& decoder) { return {decoder, decoder.root(), ""}; }

  // A member that must be there and not null.
  JSONField required(std::string_view key) const;
  // A member that may be missing or null; the field is then absent.
  JSONField optional(std::string_view key) const;
  // Whether there is a value to read.
  bool isPresent() const { return value_.has_value(); }
  // For keys that fail nothing, whatever is there.
  const std::optional<JSONValue>& value() const { return value_; }

  // The value as this type. An absent field gives an empty value; a value of another type is an error.
  std::string string() const;
  double number() const;
  std::int64_t wholeNumber() const;
  bool boolean() const;
  std::vector<JSONField> elements() const;
  // Fails on an array of more elements, before it takes any of them.
  std::vector<JSONField> elements(std::size_t atMost) const;
  std::map<std::string, JSONField> members() const;
  std::vector<std::string> strings() const;
  // Fails unless the value is an object; for records that have no required keys.
  void requireObject() const;
  // Fails unless the value is an object that has no other keys.
  void allowOnly(std::initializer_list<std::string_view> keys) const;

  void fail(std::string_view problem) const { decoder_->fail(path_, problem); }

 private:
  JSONField(JSONDecoder& decoder, std::optional<JSONValue> value, std::string path)
      : decoder_(&decoder), value_(value), path_(std::move(path)) {}
  bool is(JSONType type) const;

  JSONDecoder* decoder_;
  std::optional<JSONValue> value_;
  std::string path_;
};

}  // namespace quellaro
