#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/foundation/error.h"
#include "platform/foundation/json/json_writer.h"

namespace quellaro {

enum class JSONType { Null, Boolean, Number, String, Array, Object };

// "a string", "an array" and so on, for messages.
std::string_view describe(JSONType type);

// A value inside a JSONDocument. Cheap to copy; valid, as are the texts it gives, for as long as the document lives.
// What is asked for and what is there must be of one type: a boolean is no number, a number is no string.
class JSONValue {
 public:
  JSONType type() const;
  std::optional<bool> boolean() const;
  // Any number without a fraction counts, 3.0 and 3e0 too, as long as 64 bits hold it.
  std::optional<std::int64_t> wholeNumber() const;
  std::optional<double> number() const;
  std::optional<std::string_view> string() const;
  // Empty when this is no array, or no object.
  std::vector<JSONValue> elements() const;
  // Of an array; 0 for anything else. Costs nothing, and stops counting at 16 million.
  std::size_t elementCount() const;
  // In document order. Of equal keys the first counts.
  std::vector<std::pair<std::string_view, JSONValue>> members() const;
  std::optional<JSONValue> member(std::string_view key) const;
  // The value written out again, compactly; numbers in another form at most, never another type.
  std::string text() const;

 private:
  friend class JSONDocument;
  JSONValue() = default;
  void write(JSONWriter& writer) const;

  // The parser's own handle, which only the source file knows.
  alignas(void*) std::byte handle_[2 * sizeof(void*)]{};
};

// The strings of an array, in order, for as long as `storage` or a copy of it is kept.
struct JSONStrings {
  std::shared_ptr<const void> storage;
  std::vector<std::string_view> strings;
  // The memory that the text was read into. Its content has been used up.
  std::string spent;
};

// A whole, valid JSON text: nothing of it is left unread, so nothing about it is found wrong later. A byte order mark
// in front is skipped. Integers beyond 64 bits, more than 1024 levels and invalid UTF-8 make a text unreadable.
class JSONDocument {
 public:
  // Takes the bytes over; the document has its own copy of every string.
  static Result<JSONDocument> parse(std::string bytes);

  JSONDocument(JSONDocument&&) noexcept;
  JSONDocument& operator=(JSONDocument&&) noexcept;
  ~JSONDocument();

  JSONValue root() const;
  // When the root is an array of nothing but strings: these, without a copy, and the memory of the bytes. Everything
  // else of the document is given back.
  std::optional<JSONStrings> takeStrings() &&;

 private:
  struct Content;
  explicit JSONDocument(std::unique_ptr<Content> content);
  std::unique_ptr<Content> content_;
};

}  // namespace quellaro
