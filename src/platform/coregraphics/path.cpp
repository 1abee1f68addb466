#include "platform/coregraphics/path.h"

#include <memory>

namespace quellaro {

void CGPath::reserve(std::size_t points) {
  verbs_.reserve(points);
  points_.reserve(points);
}

void CGPath::moveInto(std::pmr::memory_resource& memory) {
  const std::span<const PathVerb> verbs = verbs_.values();
  if (verbs.empty()) return;
  auto* const kept = static_cast<PathVerb*>(memory.allocate(verbs.size_bytes(), alignof(PathVerb)));
  std::uninitialized_copy(verbs.begin(), verbs.end(), kept);
  keptVerbs_ = {kept, verbs.size()};
  keptPoints_ = PathPoints::keep(points_.values(), memory);
  verbs_ = {};
  points_ = {};
}

}  // namespace quellaro
