#pragma once

#include <memory>
#include <utility>

#include "import/art/display_list.h"

namespace halvo::art {

// Hands each shape's item to `rewrite`, at whatever depth, which gives the items that take its place.
template <class Rewrite>
DisplayList rewriteShapes(DisplayList list, const Rewrite& rewrite) {
  DisplayList result;
  result.items.reserve(list.items.size());
  for (Item& item : list.items) {
    if (auto* group = std::get_if<std::shared_ptr<Group>>(&item.what)) {
      auto copy = std::make_shared<Group>(**group);
      copy->members = rewriteShapes(std::move(copy->members), rewrite);
      result.items.push_back({std::move(copy), std::move(item.clips)});
    } else {
      rewrite(std::move(item), result.items);
    }
  }
  return result;
}

}  // namespace halvo::art
