#pragma once

#include <memory>

#include "platform/coregraphics/geometry.h"
#include "platform/coregraphics/path.h"

namespace quellaro {

// An outline under construction. Copies share their CGPath, and layers share it too, until one of them draws on.
// A segment before any move adds nothing.
class UIBezierPath {
 public:
  UIBezierPath() = default;
  // Clockwise (y grows downwards) from the origin's corner, closed.
  static UIBezierPath bezierPathWithRect(CGRect rect);
  // The oval that fills the rectangle: clockwise from its rightmost point, closed.
  static UIBezierPath bezierPathWithOvalInRect(CGRect rect);

  void moveToPoint(CGPoint to) { changed().moveTo(to); }
  void addLineToPoint(CGPoint to) { changed().lineTo(to); }
  void addCurveToPoint(CGPoint to, CGPoint control1, CGPoint control2) { changed().cubicTo(control1, control2, to); }
  void addQuadCurveToPoint(CGPoint to, CGPoint control) { changed().quadTo(control, to); }
  // Part of a circle as cubic curves, at most a quarter each; angles in radians from the x axis. It is joined to the
  // current point by a line, or begun by a move when there is none.
  void addArcWithCenter(CGPoint center, double radius, double startAngle, double endAngle, bool clockwise);
  void closePath() { changed().close(); }

  // Never null; the same empty path for all outlines nothing was drawn on.
  std::shared_ptr<const CGPath> cgPath() const;
  // Room for that many points, and giving back what is left over: for outlines that are kept.
  void reserve(std::size_t points) { changed().reserve(points); }
  void shrinkToFit() { changed().shrinkToFit(); }
  std::size_t pointCount() const { return path_ == nullptr ? 0 : path_->points().size(); }

 private:
  CGPath& changed() {
    if (path_ == nullptr || path_.use_count() > 1) makeOwn();
    return *path_;
  }
  void makeOwn();

  std::shared_ptr<CGPath> path_;
};

}  // namespace quellaro
