#pragma once

#include <concepts>
#include <memory>

#include "platform/uikit/view.h"

namespace quellaro {

// What a declarative interface embeds: a value that makes its view once, and is then told of every update.
template <class Value>
concept UIViewRepresentable = std::copyable<Value> &&
    requires(Value& value, const std::shared_ptr<typename Value::UIViewType>& view) {
  requires std::derived_from<typename Value::UIViewType, UIView>;
  { value.makeUIView() } -> std::same_as<std::shared_ptr<typename Value::UIViewType>>;
  value.updateUIView(view);
};

}  // namespace quellaro
