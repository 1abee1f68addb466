#pragma once

#include <cstddef>

#include "platform/coregraphics/geometry.h"
#include "platform/coregraphics/path.h"

namespace quellaro {

// An outline under construction. A segment before any move adds nothing.
class UIBezierPath {
 public:
  UIBezierPath() = default;
  // Clockwise (y grows downwards) from the origin's corner, closed.
  static UIBezierPath bezierPathWithRect(CGRect rect);
  // The oval that fills the rectangle: clockwise from its rightmost point, closed.
  static UIBezierPath bezierPathWithOvalInRect(CGRect rect);

  void moveToPoint(CGPoint to) { path_.moveTo(to); }
  void addLineToPoint(CGPoint to) { path_.lineTo(to); }
  void addCurveToPoint(CGPoint to, CGPoint control1, CGPoint control2) { path_.cubicTo(control1, control2, to); }
  void addQuadCurveToPoint(CGPoint to, CGPoint control) { path_.quadTo(control, to); }
  // The arc that goes all round, clockwise from the rightmost point. As every arc it is not closed by itself.
  void addCircleWithCenter(CGPoint center, double radius);
  void closePath() { path_.close(); }

  const CGPath& cgPath() const { return path_; }
  // Room for that many points.
  void reserve(std::size_t points) { path_.reserve(points); }
  // As CGPath::moveInto.
  void moveInto(std::pmr::memory_resource& memory) { path_.moveInto(memory); }
  std::size_t pointCount() const { return path_.pointCount(); }

 private:
  CGPath path_;
};

}  // namespace quellaro
