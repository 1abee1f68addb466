#include "import/art/stroke_pieces.h"

#include <cmath>
#include <initializer_list>
#include <optional>

namespace halvo::art {

namespace {

constexpr int kDeepest = 6;
constexpr double kMostTurn = 0.9;

Point unit(Point way) { return way * (1 / length(way)); }

std::optional<Point> firstWay(std::initializer_list<Point> ways, double least) {
  for (const Point way : ways)
    if (length(way) > least) return unit(way);
  return std::nullopt;
}

double angleBetween(Point a, Point b) { return std::atan2(cross(a, b), dot(a, b)); }

// Over half of the width: beyond 1 the inner side runs backwards.
double bendAt(const Cubic& c, double t, double halfWidth) {
  const Point way = wayAt(c, t);
  const Point bend = (c.p2 - c.p1 * 2 + c.p0) * (6 * (1 - t)) + (c.p3 - c.p2 * 2 + c.p1) * (6 * t);
  const double speed = length(way);
  return speed > 0 ? std::fabs(cross(way, bend)) / (speed * speed * speed) * halfWidth : 1e9;
}

class Pieces {
 public:
  Pieces(double halfWidth, double least) : halfWidth_(halfWidth), least_(least) {}

  void line(Point from, Point to, bool goesOn) {
    if (!(length(to - from) > least_)) return;
    const Point way = unit(to - from);
    all_.push_back({curveOf(from, lineTo(to)), way, way, StrokePiece::Kind::Line, goesOn});
  }

  void curve(const Cubic& c, int depth, bool goesOn) {
    const auto begins = firstWay({c.p1 - c.p0, c.p2 - c.p0, c.p3 - c.p0}, least_);
    const auto ends = firstWay({c.p3 - c.p2, c.p3 - c.p1, c.p3 - c.p0}, least_);
    if (!begins || !ends) return;
    const double turn = turnOf(c, *begins, *ends);
    int tight = 0;
    for (const double t : {0.0, 0.25, 0.5, 0.75, 1.0}) tight += bendAt(c, t, halfWidth_) > 0.97 ? 1 : 0;
    const bool isEven = tight == 0 || tight == 5;
    if (turn <= kMostTurn && (isEven || depth == kDeepest)) {
      // A curve that does not bend at all is a line.
      const bool isLine = turn < 1e-6;
      all_.push_back({isLine ? curveOf(c.p0, lineTo(c.p3)) : c, *begins, *ends,
                      isLine       ? StrokePiece::Kind::Line
                      : tight == 0 ? StrokePiece::Kind::Curve
                                   : StrokePiece::Kind::Tight,
                      goesOn});
      return;
    }
    if (depth == kDeepest) return line(c.p0, c.p3, goesOn);
    curve(partOf(c, 0, 0.5), depth + 1, goesOn);
    curve(partOf(c, 0.5, 1), depth + 1, true);
  }

  std::vector<StrokePiece> take() { return std::move(all_); }

 private:
  // Of its handles, all in all.
  double turnOf(const Cubic& c, Point begins, Point ends) const {
    const auto middle = firstWay({c.p2 - c.p1}, least_);
    if (!middle) return std::fabs(angleBetween(begins, ends));
    return std::fabs(angleBetween(begins, *middle)) + std::fabs(angleBetween(*middle, ends));
  }

  double halfWidth_;
  double least_;
  std::vector<StrokePiece> all_;
};

// How far the side is from where it should be, at its quarters.
double errorOf(const Cubic& side, const Cubic& curve, double distance) {
  double worst = 0;
  for (const double t : {0.2, 0.4, 0.6, 0.8}) {
    const Point at = pointAt(side, t);
    double nearest = t;
    for (int i = 0; i < 3; ++i) {
      const Point way = wayAt(curve, nearest);
      if (dot(way, way) == 0) break;
      nearest = std::clamp(nearest + dot(at - pointAt(curve, nearest), way) / dot(way, way), 0.0, 1.0);
    }
    worst = std::max(worst, std::fabs(length(at - pointAt(curve, nearest)) - std::fabs(distance)));
  }
  return worst;
}

void addSide(const Cubic& c, Point begins, Point ends, double distance, double tolerance, int depth,
             std::vector<Segment>& result) {
  const auto aside = [&](Point direction) { return Point{direction.y, -direction.x} * distance; };
  const Point start = c.p0 + aside(begins);
  const Point end = c.p3 + aside(ends);
  const Point middleWay = wayAt(c, 0.5);
  const Point middleDirection = length(middleWay) > 0 ? unit(middleWay) : begins;
  const Point middle = pointAt(c, 0.5) + aside(middleDirection);
  // Handles along the tangents, so long that the curve passes its middle where it should.
  const Point wanted = (middle - (start + end) * 0.5) * (8.0 / 3);
  const double across = cross(begins, ends * -1);
  double first = length(end - start) / 3;
  double second = first;
  if (std::fabs(across) > 1e-4) {
    first = cross(wanted, ends * -1) / across;
    second = cross(begins, wanted) / across;
  }
  const Cubic side{start, start + begins * first, end - ends * second, end};
  const bool isGood = first >= 0 && second >= 0 && errorOf(side, c, distance) <= tolerance;
  if (isGood || depth == 4) {
    result.push_back(isGood ? curveTo(side.p1, side.p2, side.p3) : lineTo(end));
    return;
  }
  addSide(partOf(c, 0, 0.5), begins, middleDirection, distance, tolerance, depth + 1, result);
  addSide(partOf(c, 0.5, 1), middleDirection, ends, distance, tolerance, depth + 1, result);
}

}  // namespace

std::vector<StrokePiece> piecesOf(const Contour& contour, double halfWidth) {
  // What is a millionth of the pen has no direction worth keeping.
  Pieces pieces(halfWidth, halfWidth * 1e-6);
  Point at = contour.start;
  for (const Segment& segment : contour.segments) {
    if (segment.isLine)
      pieces.line(at, segment.end, false);
    else
      pieces.curve(curveOf(at, segment), 0, false);
    at = segment.end;
  }
  if (contour.isClosed && !(at == contour.start)) pieces.line(at, contour.start, false);
  return pieces.take();
}

std::vector<Segment> sideOf(const StrokePiece& piece, double distance, double tolerance) {
  std::vector<Segment> side;
  if (piece.kind == StrokePiece::Kind::Line)
    side.push_back(lineTo(piece.curve.p3 + Point{piece.ends.y, -piece.ends.x} * distance));
  else
    addSide(piece.curve, piece.begins, piece.ends, distance, tolerance, 0, side);
  return side;
}

}  // namespace halvo::art
