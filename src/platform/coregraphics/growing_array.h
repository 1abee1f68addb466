#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <type_traits>
#include <utility>

namespace quellaro {

// Plain values that come a few at a time. Unlike a vector it asks once for room for several and leaves them unwritten,
// which is what building outlines spends its time on.
template <class Value>
class GrowingArray {
  static_assert(std::is_trivially_copyable_v<Value>);

 public:
  GrowingArray() = default;
  GrowingArray(GrowingArray&& other) noexcept
      : values_(std::move(other.values_)),
        size_(std::exchange(other.size_, 0)),
        capacity_(std::exchange(other.capacity_, 0)) {}
  GrowingArray& operator=(GrowingArray&& other) noexcept {
    values_ = std::move(other.values_);
    size_ = std::exchange(other.size_, 0);
    capacity_ = std::exchange(other.capacity_, 0);
    return *this;
  }
  GrowingArray(const GrowingArray& other) { std::copy_n(other.values_.get(), other.size_, append(other.size_)); }
  GrowingArray& operator=(const GrowingArray& other) { return *this = GrowingArray(other); }
  ~GrowingArray() = default;

  // Room for `count` more values, for the caller to write.
  Value* append(std::size_t count) {
    if (capacity_ - size_ < count) reserve(std::max<std::size_t>(size_ + count, std::size_t{capacity_} * 2));
    Value* const first = values_.get() + size_;
    size_ += static_cast<std::uint32_t>(count);
    return first;
  }

  void reserve(std::size_t capacity) {
    if (capacity <= capacity_) return;
    auto larger = std::make_unique_for_overwrite<Value[]>(capacity);
    std::ranges::copy(values(), larger.get());
    values_ = std::move(larger);
    capacity_ = static_cast<std::uint32_t>(capacity);
  }

  std::span<const Value> values() const { return {values_.get(), size_}; }

 private:
  std::unique_ptr<Value[]> values_;
  std::uint32_t size_ = 0;
  std::uint32_t capacity_ = 0;
};

}  // namespace quellaro
