#include "platform/foundation/json/json_decoder.h"

#include <algorithm>
#include <utility>

#include "platform/foundation/text/utf8.h"

namespace quellaro {

namespace {
// The platform's code for a value that cannot be decoded into what was asked for.
constexpr std::int64_t kCoderReadCorruptCode = 4864;
// Keys of any length are part of it.
constexpr std::size_t kLongestDescription = 500;
}  // namespace

void JSONDecoder::fail(const std::string& path, std::string_view problem) {
  if (error_) return;
  error_ =
      NSError{"NSCocoaErrorDomain", kCoderReadCorruptCode,
              printable((path.empty() ? std::string("At the top level") : "At " + path) + ": " + std::string(problem),
                        kLongestDescription)};
}

bool JSONField::is(JSONType type) const {
  if (!value_) return false;
  if (value_->type() == type) return true;
  fail(std::string(describe(type)) + " was expected, but this is " + std::string(describe(value_->type())));
  return false;
}

JSONField JSONField::required(std::string_view key) const {
  JSONField field = optional(key);
  if (decoder_->error() || field.isPresent()) return field;
  const bool isNull = value_ && value_->member(key);
  decoder_->fail(field.path_, isNull ? "a value is required, but this is null" : "the key is missing");
  return field;
}

JSONField JSONField::optional(std::string_view key) const {
  JSONField field(*decoder_, std::nullopt, path_.empty() ? std::string(key) : path_ + "." + std::string(key));
  if (decoder_->error() || !is(JSONType::Object)) return field;
  field.value_ = value_->member(key);
  if (field.value_ && field.value_->type() == JSONType::Null) field.value_.reset();
  return field;
}

std::string JSONField::string() const { return is(JSONType::String) ? std::string(*value_->string()) : ""; }

double JSONField::number() const { return is(JSONType::Number) ? *value_->number() : 0; }

std::int64_t JSONField::wholeNumber() const {
  if (!is(JSONType::Number)) return 0;
  const std::optional<std::int64_t> whole = value_->wholeNumber();
  if (!whole) fail("a whole number of at most 64 bits was expected, but this is " + value_->text());
  return whole.value_or(0);
}

bool JSONField::boolean() const { return is(JSONType::Boolean) && *value_->boolean(); }

void JSONField::requireObject() const { is(JSONType::Object); }

void JSONField::allowOnly(std::initializer_list<std::string_view> keys) const {
  if (!is(JSONType::Object)) return;
  for (const auto& [key, member] : value_->members())
    if (std::find(keys.begin(), keys.end(), key) == keys.end())
      return fail("the key \"" + std::string(key) + "\" is not allowed");
}

std::vector<JSONField> JSONField::elements() const {
  std::vector<JSONField> fields;
  if (!is(JSONType::Array)) return fields;
  for (const JSONValue& element : value_->elements())
    fields.push_back(JSONField(*decoder_, element, path_ + "[" + std::to_string(fields.size()) + "]"));
  return fields;
}

std::vector<JSONField> JSONField::elements(std::size_t atMost) const {
  if (!is(JSONType::Array)) return {};
  if (value_->elementCount() <= atMost) return elements();
  fail("at most " + std::to_string(atMost) + " elements are allowed, and this has more");
  return {};
}

std::map<std::string, JSONField> JSONField::members() const {
  std::map<std::string, JSONField> fields;
  if (!is(JSONType::Object)) return fields;
  const std::string prefix = path_.empty() ? "" : path_ + ".";
  for (const auto& [key, member] : value_->members())
    fields.emplace(key, JSONField(*decoder_, member, prefix + std::string(key)));
  return fields;
}

std::vector<std::string> JSONField::strings() const {
  std::vector<std::string> texts;
  for (const JSONField& element : elements()) texts.push_back(element.string());
  return texts;
}

}  // namespace quellaro
