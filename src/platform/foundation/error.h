#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <variant>

namespace quellaro {

// Why something failed: who says so, their code for it, and a sentence for a person.
struct NSError {
  std::string domain;
  std::int64_t code = 0;
  std::string localizedDescription;
  friend bool operator==(const NSError&, const NSError&) = default;

  // Everything about the error in one line, as it is printed.
  std::string description() const;
};

// With the operating system's own words for `errnoValue`.
NSError posixError(int errnoValue);

// Either a value or why there is none.
template <class Value>
class Result {
 public:
  Result(Value value) : content_(std::in_place_index<0>, std::move(value)) {}
  Result(NSError error) : content_(std::in_place_index<1>, std::move(error)) {}

  explicit operator bool() const { return content_.index() == 0; }
  // Only when there is one.
  Value& operator*() { return std::get<0>(content_); }
  const Value& operator*() const { return std::get<0>(content_); }
  Value* operator->() { return &std::get<0>(content_); }
  const Value* operator->() const { return &std::get<0>(content_); }
  // Only when there is no value.
  const NSError& error() const { return std::get<1>(content_); }

 private:
  std::variant<Value, NSError> content_;
};

}  // namespace quellaro
