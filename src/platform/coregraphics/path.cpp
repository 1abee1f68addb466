#include "platform/coregraphics/path.h"

namespace quellaro {

void CGPath::reserve(std::size_t points) {
  verbs_.reserve(points);
  points_.reserve(points);
}

void CGPath::shrinkToFit() {
  // Little is not worth a copy.
  if (points_.capacity() - points_.size() > points_.size() / 8) points_.shrink_to_fit();
  if (verbs_.capacity() - verbs_.size() > points_.size()) verbs_.shrink_to_fit();
}

}  // namespace quellaro
