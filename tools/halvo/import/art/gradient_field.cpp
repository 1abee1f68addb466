#include "import/art/gradient_field.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <utility>

#include "import/art/half_plane.h"
#include "import/art/region.h"

namespace halvo::art {

GradientField::GradientField(const Gradient& gradient, const Frame& frame) : gradient_(gradient), frame_(frame) {
  const Matrix& m = gradient.toGradient;
  const Point way = gradient.to - gradient.from;
  const double square = dot(way, way);
  const double growth = gradient.toRadius - gradient.fromRadius;
  isRegular_ = std::fabs(determinant(m)) > 0 && std::isfinite(determinant(m)) &&
               (gradient.isRadial ? growth > 0 && square <= growth * growth : square > 0);
  if (!isRegular_ || gradient.isRadial) return;
  slope_ = {(m.a * way.x + m.b * way.y) / square, (m.c * way.x + m.d * way.y) / square};
  origin_ = dot(Point{m.tx, m.ty} - gradient.from, way) / square;
}

// The outermost circle that passes there, by the larger root of |p - from - t way| = r + t growth.
double GradientField::at(Point p) const {
  if (!gradient_.isRadial) return dot(p, slope_) + origin_;
  const Point way = gradient_.to - gradient_.from;
  const double growth = gradient_.toRadius - gradient_.fromRadius;
  const Point off = gradient_.toGradient.map(p) - gradient_.from;
  const double a = dot(way, way) - growth * growth;
  const double b = dot(off, way) + gradient_.fromRadius * growth;
  const double c = dot(off, off) - gradient_.fromRadius * gradient_.fromRadius;
  if (std::fabs(a) < 1e-9 * growth * growth) return b != 0 ? c / (2 * b) : 0;
  const double root = std::sqrt(std::max(0.0, b * b - a * c));
  return std::max((b + root) / a, (b - root) / a);
}

Stretch GradientField::stretchOf(const Box& box) const {
  const auto [low, high] = std::minmax(
      {at({box.minX, box.minY}), at({box.maxX, box.minY}), at({box.maxX, box.maxY}), at({box.minX, box.maxY})});
  if (!gradient_.isRadial) return {low, high};
  const double growth = gradient_.toRadius - gradient_.fromRadius;
  return {-gradient_.fromRadius / growth, high};
}

double GradientField::unitsPerStep() const {
  if (!gradient_.isRadial) return 1 / length(slope_);
  const double growth = gradient_.toRadius - gradient_.fromRadius + length(gradient_.to - gradient_.from);
  return growth / gradient_.toGradient.stretch();
}

Outline GradientField::circle(double t) const {
  const double radius = gradient_.fromRadius + (gradient_.toRadius - gradient_.fromRadius) * t;
  if (!(radius > 0)) return {};
  const Point centre = gradient_.from + (gradient_.to - gradient_.from) * t;
  Contour contour = ellipse(centre, {radius, 0}, {0, radius});
  const Matrix back = inverse(gradient_.toGradient);
  if (determinant(back) < 0) contour = reversed(contour);
  return mapped(Outline{std::move(contour)}, back);
}

bool GradientField::isInside(const Outline& inner, const Outline& outline) const {
  return boundsOf(outline).contains(boundsOf(inner)) &&
         combine(Combination::Difference, {inner}, {outline}, frame_).empty();
}

Outline GradientField::between(const Outline& outline, double from, double to) const {
  if (!gradient_.isRadial)
    return cut(cut(outline, HalfPlane{slope_ * -1, origin_ - from}), HalfPlane{slope_, to - origin_});
  Outline ring = circle(to);
  const Outline hole = circle(from);
  const bool isInner = isInside(ring, outline);
  for (const Contour& contour : hole) ring.push_back(reversed(contour));
  return isInner ? ring : combine(Combination::Intersection, {outline}, {ring}, frame_);
}

Outline GradientField::within(const Outline& outline, const std::vector<Stretch>& where) const {
  const Stretch whole = stretchOf(boundsOf(outline));
  Outline result;
  for (const Stretch& stretch : where) {
    if (stretch.from <= whole.from && stretch.to >= whole.to) return outline;
    // Parts of nothing on either side cost corners.
    Outline part = between(outline, stretch.from, stretch.to >= whole.to ? whole.to + 1 : stretch.to);
    std::move(part.begin(), part.end(), std::back_inserter(result));
  }
  return result;
}

std::vector<Outline> GradientField::layered(const Outline& outline, const std::vector<Band>& bands,
                                            double overlap) const {
  if (gradient_.isRadial) return layeredCircles(outline, bands, overlap / unitsPerStep());
  std::vector<Outline> result;
  Outline rest = outline;
  const double lap = overlap * length(slope_);
  for (std::size_t i = 0; i < bands.size(); ++i) {
    if (i > 0) rest = cut(rest, HalfPlane{slope_ * -1, origin_ - bands[i].where.from});
    const bool isLast = i + 1 == bands.size();
    result.push_back(isLast ? rest : cut(rest, HalfPlane{slope_, bands[i].where.to + lap - origin_}));
  }
  return result;
}

// From the outermost inwards. Whole circles lie on what is around them; where they would cross the outline, edges in
// great number would lie on one another there, so that rings are cut instead.
std::vector<Outline> GradientField::layeredCircles(const Outline& outline, const std::vector<Band>& bands,
                                                   double overlap) const {
  std::size_t firstInside = 0;
  std::size_t count = bands.size() - 1;
  const auto inside = [&](std::size_t i) { return isInside(circle(bands[i].where.to), outline); };
  // Circles that lie in one another: all those below the last inside are inside too.
  std::size_t low = 0;
  while (low < count) {
    const std::size_t middle = (low + count) / 2;
    if (inside(middle))
      low = middle + 1;
    else
      count = middle;
  }
  firstInside = low;
  std::vector<Outline> result(bands.size());
  for (std::size_t i = 0; i < bands.size(); ++i) {
    if (i < firstInside) {
      result[i] = circle(bands[i].where.to);
      continue;
    }
    const bool isLast = i + 1 == bands.size();
    if (isLast && firstInside == i) {
      result[i] = outline;
      continue;
    }
    const double inner = i == firstInside ? -1 : bands[i].where.from - overlap;
    const double outer = isLast ? bands[i].where.to + 1 : bands[i].where.to;
    if (i == firstInside)
      result[i] = isLast ? outline : combine(Combination::Intersection, {outline}, {circle(outer)}, frame_);
    else
      result[i] = between(outline, inner, outer);
  }
  return result;
}

}  // namespace halvo::art
