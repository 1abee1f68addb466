#include "import/art/outline.h"

#include <limits>

namespace halvo::art {

namespace {

void include(Box& box, Point p) {
  box.minX = std::min(box.minX, p.x);
  box.minY = std::min(box.minY, p.y);
  box.maxX = std::max(box.maxX, p.x);
  box.maxY = std::max(box.maxY, p.y);
}

constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr Box kNothing{kInfinite, kInfinite, -kInfinite, -kInfinite};

// Where one coordinate of a curve turns back.
void includeTurns(Box& box, const Cubic& curve, double p0, double p1, double p2, double p3) {
  const double a = p3 - p0 + 3 * (p1 - p2);
  const double b = 2 * (p0 - 2 * p1 + p2);
  const double c = p1 - p0;
  const auto at = [&](double t) {
    if (t > 0 && t < 1) include(box, pointAt(curve, t));
  };
  if (std::fabs(a) < 1e-12) {
    if (b != 0) at(-c / b);
    return;
  }
  const double under = b * b - 4 * a * c;
  if (under < 0) return;
  at((-b + std::sqrt(under)) / (2 * a));
  at((-b - std::sqrt(under)) / (2 * a));
}

}  // namespace

Box boundsOf(const Contour& contour) {
  Box box = kNothing;
  include(box, contour.start);
  Point at = contour.start;
  for (const Segment& segment : contour.segments) {
    include(box, segment.end);
    if (!segment.isLine) {
      const Cubic c = curveOf(at, segment);
      includeTurns(box, c, c.p0.x, c.p1.x, c.p2.x, c.p3.x);
      includeTurns(box, c, c.p0.y, c.p1.y, c.p2.y, c.p3.y);
    }
    at = segment.end;
  }
  return box;
}

Box boundsOf(const Outline& outline) {
  Box all = kNothing;
  for (const Contour& contour : outline) {
    const Box box = boundsOf(contour);
    include(all, {box.minX, box.minY});
    include(all, {box.maxX, box.maxY});
  }
  return all;
}

bool isEmpty(const Box& box) { return !(box.minX < box.maxX && box.minY < box.maxY); }

Box commonBox(const Box& a, const Box& b) {
  return {std::max(a.minX, b.minX), std::max(a.minY, b.minY), std::min(a.maxX, b.maxX), std::min(a.maxY, b.maxY)};
}

Outline mapped(Outline outline, const Matrix& matrix) {
  for (Contour& contour : outline) {
    contour.start = matrix.map(contour.start);
    for (Segment& segment : contour.segments) {
      segment.control1 = matrix.map(segment.control1);
      segment.control2 = matrix.map(segment.control2);
      segment.end = matrix.map(segment.end);
    }
  }
  return outline;
}

Contour reversed(const Contour& contour) {
  Contour result{contour.end(), {}, contour.isClosed};
  result.segments.reserve(contour.segments.size());
  for (std::size_t i = contour.segments.size(); i-- > 0;) {
    const Segment& segment = contour.segments[i];
    const Point to = i > 0 ? contour.segments[i - 1].end : contour.start;
    result.segments.push_back({segment.control2, segment.control1, to, segment.isLine});
  }
  return result;
}

double determinant(const Matrix& m) { return m.a * m.d - m.b * m.c; }

Matrix inverse(const Matrix& m) {
  const double over = 1 / determinant(m);
  return {m.d * over,
          -m.b * over,
          -m.c * over,
          m.a * over,
          (m.c * m.ty - m.d * m.tx) * over,
          (m.b * m.tx - m.a * m.ty) * over};
}

Cubic curveOf(Point start, const Segment& segment) {
  if (!segment.isLine) return {start, segment.control1, segment.control2, segment.end};
  const Point third = (segment.end - start) * (1.0 / 3);
  return {start, start + third, segment.end - third, segment.end};
}

Point pointAt(const Cubic& c, double t) {
  const double u = 1 - t;
  return c.p0 * (u * u * u) + c.p1 * (3 * u * u * t) + c.p2 * (3 * u * t * t) + c.p3 * (t * t * t);
}

Point wayAt(const Cubic& c, double t) {
  const double u = 1 - t;
  return (c.p1 - c.p0) * (3 * u * u) + (c.p2 - c.p1) * (6 * u * t) + (c.p3 - c.p2) * (3 * t * t);
}

Cubic partOf(const Cubic& curve, double from, double to) {
  const double third = (to - from) / 3;
  const Point start = from == 0 ? curve.p0 : from == 1 ? curve.p3 : pointAt(curve, from);
  const Point end = to == 1 ? curve.p3 : to == 0 ? curve.p0 : pointAt(curve, to);
  return {start, start + wayAt(curve, from) * third, end - wayAt(curve, to) * third, end};
}

Outline rectangle(const Box& box) {
  return {{{box.minX, box.minY},
           {lineTo({box.maxX, box.minY}), lineTo({box.maxX, box.maxY}), lineTo({box.minX, box.maxY})},
           true}};
}

Contour ellipse(Point centre, Point x, Point y) {
  // The handles of a quarter, for which the curve is nowhere 0.03 % off.
  constexpr double kHandle = 0.5522847498;
  Contour contour{centre + x, {}, true};
  const Point ring[] = {x, y, x * -1, y * -1, x};
  for (int i = 0; i < 4; ++i)
    contour.segments.push_back(curveTo(centre + ring[i] + ring[i + 1] * kHandle,
                                       centre + ring[i + 1] + ring[i] * kHandle, centre + ring[i + 1]));
  return contour;
}

bool isRectangle(const Outline& outline, Box& box) {
  // Rounding in steps of the drawing library's is no slant.
  constexpr double kLevel = 1e-3;
  if (outline.size() != 1) return false;
  const Contour& contour = outline[0];
  const std::size_t count = contour.segments.size();
  const auto near = [](double a, double b) { return std::fabs(a - b) < kLevel; };
  const auto meet = [&](Point a, Point b) { return near(a.x, b.x) && near(a.y, b.y); };
  if (count != 3 && !(count == 4 && meet(contour.end(), contour.start))) return false;
  box = boundsOf(outline);
  const auto isCorner = [&](Point p) {
    return (near(p.x, box.minX) || near(p.x, box.maxX)) && (near(p.y, box.minY) || near(p.y, box.maxY));
  };
  Point at = contour.start;
  bool isLevel = true;
  for (const Segment& segment : contour.segments) {
    const bool isEdge = near(at.x, segment.end.x) != near(at.y, segment.end.y);
    isLevel = isLevel && segment.isLine && isEdge && isCorner(segment.end);
    at = segment.end;
  }
  const bool goesRound = !meet(contour.start, contour.segments[1].end);
  return isLevel && goesRound && isCorner(contour.start);
}

}  // namespace halvo::art
