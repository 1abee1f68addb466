#include "platform/coregraphics/path.h"

namespace quellaro {

void CGPath::moveTo(CGPoint to) {
  verbs_.push_back(PathVerb::Move);
  points_.push_back(to);
}

void CGPath::lineTo(CGPoint to) {
  if (verbs_.empty()) return;
  verbs_.push_back(PathVerb::Line);
  points_.push_back(to);
}

void CGPath::quadTo(CGPoint control, CGPoint to) {
  if (verbs_.empty()) return;
  verbs_.push_back(PathVerb::Quad);
  points_.insert(points_.end(), {control, to});
}

void CGPath::cubicTo(CGPoint control1, CGPoint control2, CGPoint to) {
  if (verbs_.empty()) return;
  verbs_.push_back(PathVerb::Cubic);
  points_.insert(points_.end(), {control1, control2, to});
}

void CGPath::close() {
  if (verbs_.empty()) return;
  verbs_.push_back(PathVerb::Close);
}

void CGPath::reserve(std::size_t points) {
  verbs_.reserve(points);
  points_.reserve(points);
}

void CGPath::shrinkToFit() {
  verbs_.shrink_to_fit();
  points_.shrink_to_fit();
}

}  // namespace quellaro
