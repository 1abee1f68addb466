#include "platform/uikit/bezier_path.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quellaro {

namespace {

constexpr double kQuarterTurn = std::numbers::pi / 2;
constexpr double kFullTurn = std::numbers::pi * 2;
// 4/3 (sqrt 2 - 1): how far a quarter circle's control points lie from its ends, for radius 1.
constexpr double kQuarterHandle = 0.5522847498307936;

struct Direction {
  double cosine;
  double sine;
};

// Exact at quarter turns, where sin and cos of a rounded angle are not.
Direction directionOf(double angle) {
  static constexpr Direction kQuarters[] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
  const double quarters = angle / kQuarterTurn;
  const double nearest = std::round(quarters);
  if (std::abs(quarters - nearest) < 1e-12 && std::abs(nearest) < 1e6)
    return kQuarters[static_cast<unsigned>(static_cast<int>(nearest)) % 4];
  return {std::cos(angle), std::sin(angle)};
}

// The angle to turn by, 0 to a full turn, negative when not clockwise.
double sweepOf(double startAngle, double endAngle, bool clockwise) {
  const double difference = clockwise ? endAngle - startAngle : startAngle - endAngle;
  double sweep = difference;
  if (!(std::abs(difference) < kFullTurn * (1 + 1e-12)))
    sweep = kFullTurn;
  else if (difference < 0)
    sweep += kFullTurn;
  sweep = std::clamp(sweep, 0.0, kFullTurn);
  return clockwise ? sweep : -sweep;
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
  const auto at = [&](double x, double y) { return CGPoint{center.x + x * rx, center.y + y * ry}; };
  constexpr double k = kQuarterHandle;
  UIBezierPath path;
  path.moveToPoint(at(1, 0));
  path.addCurveToPoint(at(0, 1), at(1, k), at(k, 1));
  path.addCurveToPoint(at(-1, 0), at(-k, 1), at(-1, k));
  path.addCurveToPoint(at(0, -1), at(-1, -k), at(-k, -1));
  path.addCurveToPoint(at(1, 0), at(k, -1), at(1, -k));
  path.closePath();
  return path;
}

void UIBezierPath::addArcWithCenter(CGPoint center, double radius, double startAngle, double endAngle, bool clockwise) {
  const double sweep = sweepOf(startAngle, endAngle, clockwise);
  const int pieces = static_cast<int>(std::ceil(std::abs(sweep) / kQuarterTurn - 1e-9));
  const double piece = pieces > 0 ? sweep / pieces : 0;
  const double handle = std::abs(std::abs(piece) - kQuarterTurn) < 1e-12 ? std::copysign(kQuarterHandle, piece)
                                                                         : 4.0 / 3 * std::tan(piece / 4);
  const auto at = [&](Direction d, double along) {
    return CGPoint{center.x + radius * (d.cosine - along * d.sine), center.y + radius * (d.sine + along * d.cosine)};
  };
  Direction from = directionOf(startAngle);
  if (path_.empty())
    path_.moveTo(at(from, 0));
  else
    path_.lineTo(at(from, 0));
  for (int i = 1; i <= pieces; ++i) {
    const Direction to = directionOf(startAngle + piece * i);
    path_.cubicTo(at(from, handle), at(to, -handle), at(to, 0));
    from = to;
  }
}

}  // namespace quellaro
