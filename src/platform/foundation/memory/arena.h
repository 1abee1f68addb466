#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <memory_resource>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "platform/foundation/memory/large_memory.h"

namespace quellaro {

// Memory for many small things that come one after the other and go together: taking some costs next to nothing, and
// it is given back at once. One thread at a time may take.
class Arena {
 public:
  // `expectedBytes` are asked for when the first thing comes.
  explicit Arena(std::size_t expectedBytes) : memory_(expectedBytes, &blocks_), bulk_(expectedBytes, &blocks_) {}
  // Begins in part of some memory that had another use before: what the process has already touched costs it nothing.
  // The bulk gets the larger share of it.
  Arena(std::shared_ptr<std::string> used, std::span<char> part)
      : used_(std::move(used)),
        part_(part),
        memory_(part.data() + bulkShare(), part.size() - bulkShare(), &blocks_),
        bulk_(part.data(), bulkShare(), &blocks_) {}
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;

  void* allocate(std::size_t bytes, std::size_t alignment) { return memory_.allocate(bytes, alignment); }

  // For what is large and seldom looked at: apart from the small things, which so stay close together.
  std::pmr::memory_resource& bulk() { return bulk_; }

  // What has not been taken of the memory that had another use goes back to the system until it is.
  void giveBackUnused() {
    giveBackFrom(bulk_, part_.data() + bulkShare());
    giveBackFrom(memory_, part_.data() + part_.size());
  }

  // A copy that lives as long as the arena.
  template <class Value>
  std::span<const Value> keep(std::span<const Value> values) {
    static_assert(std::is_trivially_copyable_v<Value>);
    if (values.empty()) return {};
    auto* const copy = static_cast<Value*>(allocate(values.size_bytes(), alignof(Value)));
    std::uninitialized_copy(values.begin(), values.end(), copy);
    return {copy, values.size()};
  }
  std::string_view keep(std::string_view text) {
    const std::span<const char> copy = keep(std::span<const char>(text.data(), text.size()));
    return {copy.data(), copy.size()};
  }

 private:
  class Blocks : public std::pmr::memory_resource {
    void* do_allocate(std::size_t bytes, std::size_t alignment) override {
      void* const block = std::pmr::new_delete_resource()->allocate(bytes, alignment);
      preferLargePages(block, bytes);
      return block;
    }
    void do_deallocate(void* block, std::size_t bytes, std::size_t alignment) override {
      std::pmr::new_delete_resource()->deallocate(block, bytes, alignment);
    }
    bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override { return this == &other; }
  };

  std::size_t bulkShare() const { return part_.size() / 8 * 5; }
  // `end` is that of the first block.
  void giveBackFrom(std::pmr::memory_resource& resource, const char* end) {
    auto* const next = static_cast<char*>(resource.allocate(1, 1));
    if (std::less_equal<>()(part_.data(), next) && std::less<>()(next, end))
      giveBackPages(next, static_cast<std::size_t>(end - next));
  }

  Blocks blocks_;
  std::shared_ptr<std::string> used_;
  std::span<char> part_;
  std::pmr::monotonic_buffer_resource memory_;
  std::pmr::monotonic_buffer_resource bulk_;
};

// For std::allocate_shared. Each object made with it keeps its arena alive.
template <class Value>
class ArenaAllocator {
 public:
  using value_type = Value;

  explicit ArenaAllocator(std::shared_ptr<Arena> arena) : arena_(std::move(arena)) {}
  template <class Other>
  ArenaAllocator(const ArenaAllocator<Other>& other) : arena_(other.arena()) {}

  Value* allocate(std::size_t count) {
    return static_cast<Value*>(arena_->allocate(count * sizeof(Value), alignof(Value)));
  }
  void deallocate(Value* /*memory*/, std::size_t /*count*/) {}

  const std::shared_ptr<Arena>& arena() const { return arena_; }
  template <class Other>
  bool operator==(const ArenaAllocator<Other>& other) const {
    return arena_ == other.arena();
  }

 private:
  std::shared_ptr<Arena> arena_;
};

// As std::make_shared; all types have their counters in common.
template <class Object, class... Arguments>
std::shared_ptr<Object> makeShared(const std::shared_ptr<Arena>& arena, Arguments&&... arguments) {
  static_assert(
      !requires(Object & made) { made.weak_from_this(); }, "it would not learn of its owner");
  auto* const object = std::construct_at(static_cast<Object*>(arena->allocate(sizeof(Object), alignof(Object))),
                                         std::forward<Arguments>(arguments)...);
  const auto destroy = static_cast<void (*)(void*)>([](void* made) { std::destroy_at(static_cast<Object*>(made)); });
  return {std::shared_ptr<void>(static_cast<void*>(object), destroy, ArenaAllocator<std::byte>(arena)), object};
}

}  // namespace quellaro
