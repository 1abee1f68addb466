#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace quellaro {

// Last in, first out. Popping and peeking need an item.
template <class Item>
class Stack {
 public:
  void push(Item item) { items_.push_back(std::move(item)); }
  Item pop() {
    Item item = std::move(items_.back());
    items_.pop_back();
    return item;
  }
  const Item& peek() const { return items_.back(); }
  std::size_t count() const { return items_.size(); }
  const std::vector<Item>& items() const { return items_; }

 private:
  std::vector<Item> items_;
};

}  // namespace quellaro
