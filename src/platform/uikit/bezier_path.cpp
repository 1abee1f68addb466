#include "platform/uikit/bezier_path.h"

namespace quellaro {

namespace {

// The oval's four quarters, clockwise from its rightmost point, which is the current one.
void addQuarters(UIBezierPath& path, CGPoint center, double rx, double ry) {
  // 4/3 (sqrt 2 - 1): how far a quarter circle's control points lie from its ends, for radius 1.
  constexpr double k = 0.5522847498307936;
  const auto at = [&](double x, double y) { return CGPoint{center.x + x * rx, center.y + y * ry}; };
  path.addCurveToPoint(at(0, 1), at(1, k), at(k, 1));
  path.addCurveToPoint(at(-1, 0), at(-k, 1), at(-1, k));
  path.addCurveToPoint(at(0, -1), at(-1, -k), at(-k, -1));
  path.addCurveToPoint(at(1, 0), at(k, -1), at(1, -k));
}

}  // namespace

UIBezierPath UIBezierPath::bezierPathWithRect(CGRect rect) {
  const auto [x, y] = rect.origin;
  const auto [width, height] = rect.size;
  UIBezierPath path;
  path.moveToPoint({x, y});
  path.addLineToPoint({x + width, y});
  path.addLineToPoint({x + width, y + height});
  path.addLineToPoint({x, y + height});
  path.closePath();
  return path;
}

UIBezierPath UIBezierPath::bezierPathWithOvalInRect(CGRect rect) {
  const double rx = rect.size.width / 2;
  const double ry = rect.size.height / 2;
  const CGPoint center{rect.origin.x + rx, rect.origin.y + ry};
  UIBezierPath path;
  path.moveToPoint({center.x + rx, center.y});
  addQuarters(path, center, rx, ry);
  path.closePath();
  return path;
}

void UIBezierPath::addCircleWithCenter(CGPoint center, double radius) {
  moveToPoint({center.x + radius, center.y});
  addQuarters(*this, center, radius, radius);
}

}  // namespace quellaro
