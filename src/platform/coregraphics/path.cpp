#include "platform/coregraphics/path.h"

#include <memory>
#include <utility>

namespace quellaro {

namespace {

// A vector keeps its allocator for life, so another one takes its place.
template <class Value>
void moveVectorInto(std::pmr::vector<Value>& values, std::pmr::memory_resource& memory) {
  std::pmr::vector<Value> moved(values.begin(), values.end(), &memory);
  std::destroy_at(&values);
  std::construct_at(&values, std::move(moved));
}

}  // namespace

void CGPath::reserve(std::size_t points) {
  verbs_.reserve(points);
  points_.reserve(points);
}

void CGPath::moveInto(std::pmr::memory_resource& memory) {
  moveVectorInto(verbs_, memory);
  moveVectorInto(points_, memory);
}

}  // namespace quellaro
