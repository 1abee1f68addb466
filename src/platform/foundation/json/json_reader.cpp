#include "platform/foundation/json/json_reader.h"

#include <simdjson.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <type_traits>

#include "platform/foundation/memory/large_memory.h"
#include "platform/foundation/text/numbers.h"

namespace quellaro {

namespace dom = simdjson::dom;

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
// The platform's code for a text that is not in the format it should be in.
constexpr std::int64_t kReadCorruptCode = 3840;

static_assert(std::is_trivially_copyable_v<dom::element>);

dom::element elementOf(const std::byte* handle) {
  dom::element element;
  std::memcpy(static_cast<void*>(&element), handle, sizeof element);
  return element;
}

NSError unreadable(const std::string& why) {
  return {"NSCocoaErrorDomain", kReadCorruptCode, "The data is not valid JSON: " + why};
}

// Whole doubles beyond these do not fit into 64 bits.
constexpr double kFirstTooLarge = 9223372036854775808.0;

void writeNumber(dom::element number, JSONWriter& writer) {
  std::uint64_t natural = 0;
  std::int64_t whole = 0;
  double real = 0;
  if (number.get(whole) == simdjson::SUCCESS)
    writer.integer(whole);
  else if (number.get(natural) == simdjson::SUCCESS)
    writer.raw(std::to_string(natural));
  else if (number.get(real) == simdjson::SUCCESS && std::floor(real) == real && std::abs(real) < kFirstTooLarge)
    writer.raw(decimalDescription(real));  // 2.0 stays what it is
  else
    writer.number(real);
}

// Whether 64 bits hold this text of a number; one that is no integer is none of their business.
bool fitsInteger(std::string_view number) {
  const bool isNegative = number.starts_with('-');
  const std::string_view digits = number.substr(isNegative ? 1 : 0);
  const std::string_view largest = isNegative ? "9223372036854775808" : "18446744073709551615";
  if (digits.starts_with('0') || digits.find_first_not_of("0123456789") != digits.npos) return true;
  return digits.size() < largest.size() || (digits.size() == largest.size() && digits <= largest);
}

// The text with its integers beyond 64 bits written as doubles, which is what they can be read as; what no double holds
// becomes the largest. What is no JSON stays none.
std::string withoutLargeIntegers(std::string_view text) {
  constexpr std::size_t kDigitsOfDoubles = 308;
  std::string result;
  bool isInString = false;
  for (std::size_t length = 0; !text.empty(); text.remove_prefix(length)) {
    const char first = text.front();
    if (first == '"') isInString = !isInString;
    const bool isNumber = !isInString && (first == '-' || (first >= '0' && first <= '9'));
    length = 1;
    if (isInString && first == '\\') length = std::min<std::size_t>(2, text.size());
    if (isNumber) length = std::min(text.find_first_not_of("+-.0123456789Ee"), text.size());
    const std::string_view token = text.substr(0, length);
    if (!isNumber || fitsInteger(token))
      result += token;
    else if (token.size() <= kDigitsOfDoubles)
      (result += token) += ".0";
    else
      result += first == '-' ? "-1.7976931348623157e308" : "1.7976931348623157e308";
  }
  return result;
}

}  // namespace

std::string_view describe(JSONType type) {
  switch (type) {
    case JSONType::Null:
      return "null";
    case JSONType::Boolean:
      return "a boolean";
    case JSONType::Number:
      return "a number";
    case JSONType::String:
      return "a string";
    case JSONType::Array:
      return "an array";
    case JSONType::Object:
      return "an object";
  }
  return "nothing";
}

JSONType JSONValue::type() const {
  switch (elementOf(handle_).type()) {
    case dom::element_type::ARRAY:
      return JSONType::Array;
    case dom::element_type::OBJECT:
      return JSONType::Object;
    case dom::element_type::INT64:
    case dom::element_type::UINT64:
    case dom::element_type::DOUBLE:
      return JSONType::Number;
    case dom::element_type::STRING:
      return JSONType::String;
    case dom::element_type::BOOL:
      return JSONType::Boolean;
    case dom::element_type::NULL_VALUE:
      break;
  }
  return JSONType::Null;
}

std::optional<bool> JSONValue::boolean() const {
  bool value = false;
  if (elementOf(handle_).get(value) != simdjson::SUCCESS) return std::nullopt;
  return value;
}

std::optional<std::int64_t> JSONValue::wholeNumber() const {
  const dom::element element = elementOf(handle_);
  std::int64_t whole = 0;
  if (element.get(whole) == simdjson::SUCCESS) return whole;
  double number = 0;
  if (!element.is_double() || element.get(number) != simdjson::SUCCESS) return std::nullopt;
  if (std::floor(number) != number || number < -kFirstTooLarge || number >= kFirstTooLarge) return std::nullopt;
  return static_cast<std::int64_t>(number);
}

std::optional<double> JSONValue::number() const {
  double value = 0;
  if (elementOf(handle_).get(value) != simdjson::SUCCESS) return std::nullopt;
  return value;
}

std::optional<std::string_view> JSONValue::string() const {
  std::string_view value;
  if (elementOf(handle_).get(value) != simdjson::SUCCESS) return std::nullopt;
  return value;
}

std::vector<JSONValue> JSONValue::elements() const {
  std::vector<JSONValue> result;
  dom::array array;
  if (elementOf(handle_).get(array) != simdjson::SUCCESS) return result;
  for (const dom::element element : array) {
    JSONValue value;
    std::memcpy(value.handle_, &element, sizeof element);
    result.push_back(value);
  }
  return result;
}

std::size_t JSONValue::elementCount() const {
  dom::array array;
  return elementOf(handle_).get(array) == simdjson::SUCCESS ? array.size() : 0;
}

std::vector<std::pair<std::string_view, JSONValue>> JSONValue::members() const {
  std::vector<std::pair<std::string_view, JSONValue>> result;
  dom::object object;
  if (elementOf(handle_).get(object) != simdjson::SUCCESS) return result;
  for (const dom::key_value_pair field : object) {
    JSONValue value;
    std::memcpy(value.handle_, &field.value, sizeof field.value);
    result.emplace_back(field.key, value);
  }
  return result;
}

std::optional<JSONValue> JSONValue::member(std::string_view key) const {
  dom::object object;
  if (elementOf(handle_).get(object) != simdjson::SUCCESS) return std::nullopt;
  dom::element element;
  if (object.at_key(key).get(element) != simdjson::SUCCESS) return std::nullopt;
  JSONValue value;
  std::memcpy(value.handle_, &element, sizeof element);
  return value;
}

// Recurses no deeper than the parser lets a text be.
void JSONValue::write(JSONWriter& writer) const {
  switch (type()) {
    case JSONType::Object:
      writer.beginObject();
      for (const auto& [key, value] : members()) value.write(writer.key(key));
      writer.endObject();
      break;
    case JSONType::Array:
      writer.beginArray();
      for (const JSONValue& element : elements()) element.write(writer);
      writer.endArray();
      break;
    case JSONType::String:
      writer.string(*string());
      break;
    case JSONType::Number:
      writeNumber(elementOf(handle_), writer);
      break;
    case JSONType::Boolean:
      writer.boolean(*boolean());
      break;
    case JSONType::Null:
      writer.null();
  }
}

std::string JSONValue::text() const {
  JSONWriter writer;
  write(writer);
  return writer.take();
}

struct JSONDocument::Content {
  std::string bytes;
  dom::parser parser;
  dom::document document;
  dom::element root;

  simdjson::error_code parse() {
    const std::size_t start = bytes.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
    const std::size_t length = bytes.size() - start;
    // The parser looks beyond the end, though it does not care what is there.
    bytes.append(simdjson::SIMDJSON_PADDING, '\0');
    if (document.allocate(length) == simdjson::SUCCESS) preferLargePages(document.string_buf.get(), length);
    const auto error = parser.parse_into_document(document, bytes.data() + start, length, false).get(root);
    bytes.resize(start + length);
    return error;
  }
};

JSONDocument::JSONDocument(std::unique_ptr<Content> content) : content_(std::move(content)) {}
JSONDocument::JSONDocument(JSONDocument&&) noexcept = default;
JSONDocument& JSONDocument::operator=(JSONDocument&&) noexcept = default;
JSONDocument::~JSONDocument() = default;

Result<JSONDocument> JSONDocument::parse(std::string bytes) {
  static_assert(sizeof(dom::element) == sizeof JSONValue::handle_);
  auto content = std::make_unique<Content>();
  content->bytes = std::move(bytes);
  simdjson::error_code error = content->parse();
  // Which error an integer beyond 64 bits is, and of which sign, differs between the parser's versions.
  if (error != simdjson::SUCCESS && error != simdjson::MEMALLOC) {
    std::string rewritten = withoutLargeIntegers(content->bytes);
    if (rewritten != content->bytes) {
      content->bytes = std::move(rewritten);
      error = content->parse();
    }
  }
  // No fault of the text.
  if (error == simdjson::MEMALLOC) throw std::bad_alloc();
  if (error != simdjson::SUCCESS) return unreadable(simdjson::error_message(error));
  // Only the tape and the strings are needed from here on.
  content->parser = dom::parser();
  return JSONDocument(std::move(content));
}

std::optional<JSONStrings> JSONDocument::takeStrings() && {
  dom::array array;
  if (content_->root.get(array) != simdjson::SUCCESS) return std::nullopt;
  JSONStrings taken;
  for (const dom::element element : array) {
    std::string_view text;
    if (element.get(text) != simdjson::SUCCESS) return std::nullopt;
    taken.strings.push_back(text);
  }
  taken.storage = std::shared_ptr<const std::uint8_t[]>(std::move(content_->document.string_buf));
  taken.spent = std::move(content_->bytes);
  content_.reset();
  return taken;
}

JSONValue JSONDocument::root() const {
  JSONValue value;
  std::memcpy(value.handle_, &content_->root, sizeof content_->root);
  return value;
}

}  // namespace quellaro
