#pragma once

#include <memory>
#include <type_traits>
#include <utility>

namespace quellaro {

// As std::make_shared, for what there are few of: all types have their counters in common, where std::make_shared makes
// a class with five functions for each.
template <class Object, class... Arguments>
std::shared_ptr<Object> makeSharedObject(Arguments&&... arguments) {
  using Made = std::remove_const_t<Object>;
  static_assert(
      !requires(Made & made) { made.weak_from_this(); }, "it would not learn of its owner");
  auto* const object = std::make_unique<Made>(std::forward<Arguments>(arguments)...).release();
  const auto remove =
      static_cast<void (*)(void*)>([](void* made) { std::default_delete<Made>()(static_cast<Made*>(made)); });
  return {std::shared_ptr<void>(static_cast<void*>(object), remove), object};
}

}  // namespace quellaro
