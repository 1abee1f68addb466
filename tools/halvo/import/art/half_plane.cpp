#include "import/art/half_plane.h"

#include <array>
#include <cmath>
#include <optional>

namespace halvo::art {

namespace {

// A cubic polynomial by its values at the control points.
struct Polynomial {
  double v0, v1, v2, v3;

  double at(double t) const {
    const double u = 1 - t;
    return u * u * u * v0 + 3 * u * u * t * v1 + 3 * u * t * t * v2 + t * t * t * v3;
  }
};

// At most three, in order, with 0 before and 1 behind them.
struct Breaks {
  std::array<double, 5> t{0};
  std::size_t count = 1;

  void add(double value) {
    if (value > t[count - 1] && value < 1) t[count++] = value;
  }
};

// Where it turns back.
Breaks turnsOf(const Polynomial& p) {
  Breaks turns;
  const double a = p.v3 - p.v0 + 3 * (p.v1 - p.v2);
  const double b = 2 * (p.v0 - 2 * p.v1 + p.v2);
  const double c = p.v1 - p.v0;
  const double size = std::fabs(a) + std::fabs(b) + std::fabs(c);
  if (std::fabs(a) <= 1e-12 * size) {
    if (b != 0) turns.add(-c / b);
  } else if (const double under = b * b - 4 * a * c; under > 0) {
    const double root = std::sqrt(under);
    const double first = (-b - root) / (2 * a);
    const double second = (-b + root) / (2 * a);
    turns.add(std::min(first, second));
    turns.add(std::max(first, second));
  }
  turns.t[turns.count++] = 1;
  return turns;
}

// Where it is 0, between values of different sign.
Breaks zerosOf(const Polynomial& p) {
  const Breaks turns = turnsOf(p);
  Breaks zeros;
  for (std::size_t i = 0; i + 1 < turns.count; ++i) {
    double low = turns.t[i];
    double high = turns.t[i + 1];
    const bool rises = p.at(low) <= 0;
    if (rises == (p.at(high) <= 0)) continue;
    for (int halvings = 0; halvings < 50; ++halvings) {
      const double middle = (low + high) / 2;
      ((p.at(middle) <= 0) == rises ? low : high) = middle;
    }
    zeros.add((low + high) / 2);
  }
  zeros.t[zeros.count++] = 1;
  return zeros;
}

class Cutter {
 public:
  explicit Cutter(const HalfPlane& plane) : plane_(plane) {}

  std::optional<Contour> cut(const Contour& contour) {
    Point at = contour.start;
    for (const Segment& segment : contour.segments) {
      segmentFrom(at, segment);
      at = segment.end;
    }
    if (!(at == contour.start)) segmentFrom(at, lineTo(contour.start));
    if (!kept_) return std::nullopt;
    kept_->isClosed = true;
    return std::move(kept_);
  }

 private:
  double side(Point p) const { return dot(p, plane_.normal) - plane_.limit; }

  void segmentFrom(Point start, const Segment& segment) {
    const Cubic curve = curveOf(start, segment);
    const Polynomial p{side(curve.p0), side(curve.p1), side(curve.p2), side(curve.p3)};
    if (std::max({p.v0, p.v1, p.v2, p.v3}) <= 0) return keep(start, segment);
    if (std::min({p.v0, p.v1, p.v2, p.v3}) > 0) return;
    const Breaks breaks = zerosOf(p);
    for (std::size_t i = 0; i + 1 < breaks.count; ++i) {
      const double from = breaks.t[i];
      const double to = breaks.t[i + 1];
      if (p.at((from + to) / 2) > 0) continue;
      const Cubic part = partOf(curve, from, to);
      keep(part.p0, segment.isLine ? lineTo(part.p3) : curveTo(part.p1, part.p2, part.p3));
    }
  }

  void keep(Point start, const Segment& segment) {
    if (!kept_)
      kept_ = Contour{start, {}, true};
    else if (!(kept_->end() == start))
      kept_->segments.push_back(lineTo(start));
    kept_->segments.push_back(segment);
  }

  const HalfPlane& plane_;
  std::optional<Contour> kept_;
};

}  // namespace

Outline cut(const Outline& outline, const HalfPlane& plane) {
  Outline result;
  for (const Contour& contour : outline)
    if (auto kept = Cutter(plane).cut(contour)) result.push_back(*std::move(kept));
  return result;
}

Outline cut(Outline outline, const Box& box) {
  const Box bounds = boundsOf(outline);
  if (bounds.minX < box.minX) outline = cut(outline, HalfPlane{{-1, 0}, -box.minX});
  if (bounds.maxX > box.maxX) outline = cut(outline, HalfPlane{{1, 0}, box.maxX});
  if (bounds.minY < box.minY) outline = cut(outline, HalfPlane{{0, -1}, -box.minY});
  if (bounds.maxY > box.maxY) outline = cut(outline, HalfPlane{{0, 1}, box.maxY});
  return outline;
}

std::optional<std::vector<HalfPlane>> halfPlanesOf(const Outline& outline) {
  if (outline.size() != 1 || outline[0].segments.size() > 16) return std::nullopt;
  std::vector<Point> corners{outline[0].start};
  for (const Segment& segment : outline[0].segments) {
    if (!segment.isLine) return std::nullopt;
    if (!(segment.end == corners.back())) corners.push_back(segment.end);
  }
  while (corners.size() > 1 && corners.back() == corners.front()) corners.pop_back();
  const std::size_t count = corners.size();
  if (count < 3) return std::nullopt;
  std::vector<HalfPlane> planes;
  double turned = 0;
  double direction = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const Point way = corners[(i + 1) % count] - corners[i];
    const Point next = corners[(i + 2) % count] - corners[(i + 1) % count];
    const double turn = std::atan2(cross(way, next), dot(way, next));
    if (turn * direction < 0) return std::nullopt;
    if (turn != 0) direction = turn;
    turned += turn;
    planes.push_back({Point{way.y, -way.x}, dot(Point{way.y, -way.x}, corners[i])});
  }
  // Once around, not twice.
  if (std::fabs(turned) > 6.5) return std::nullopt;
  if (direction < 0)
    for (HalfPlane& plane : planes) plane = {plane.normal * -1, -plane.limit};
  return planes;
}

bool containsBox(const std::vector<HalfPlane>& planes, const Box& box) {
  const Point corners[] = {{box.minX, box.minY}, {box.maxX, box.minY}, {box.maxX, box.maxY}, {box.minX, box.maxY}};
  for (const HalfPlane& plane : planes)
    for (const Point corner : corners)
      // Rounding in steps of the drawing library's cuts nothing off.
      if (dot(corner, plane.normal) - plane.limit > 1e-3 * length(plane.normal)) return false;
  return true;
}

}  // namespace halvo::art
