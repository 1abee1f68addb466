#pragma once

#include <algorithm>
#include <cmath>

#include "platform/coregraphics/geometry.h"

namespace quellaro {

// What of a transform shows in the plane: x' = a x + c y + tx, y' = b x + d y + ty.
struct Affine {
  double a = 1, b = 0, c = 0, d = 1, tx = 0, ty = 0;

  CGPoint map(CGPoint p) const { return {p.x * a + p.y * c + tx, p.x * b + p.y * d + ty}; }

  // The greatest factor by which the transform stretches a length.
  double stretch() const {
    const double half = (a * a + b * b + c * c + d * d) / 2;
    const double skew = std::hypot((a * a + b * b - c * c - d * d) / 2, a * c + b * d);
    return std::sqrt(half + skew);
  }
};

// First `inner`, then `outer`.
inline Affine concat(const Affine& inner, const Affine& outer) {
  return {inner.a * outer.a + inner.b * outer.c,
          inner.a * outer.b + inner.b * outer.d,
          inner.c * outer.a + inner.d * outer.c,
          inner.c * outer.b + inner.d * outer.d,
          inner.tx * outer.a + inner.ty * outer.c + outer.tx,
          inner.tx * outer.b + inner.ty * outer.d + outer.ty};
}

// Beyond this everything is far outside any surface, while products of several such numbers still are finite.
inline constexpr double kFarAway = 1e60;

inline CGPoint clampFar(CGPoint p) {
  return {std::min(std::max(p.x, -kFarAway), kFarAway), std::min(std::max(p.y, -kFarAway), kFarAway)};
}

struct Box {
  double minX = 0, minY = 0, maxX = 0, maxY = 0;

  Box grown(double by) const { return {minX - by, minY - by, maxX + by, maxY + by}; }
  bool overlaps(const Box& other) const {
    return minX <= other.maxX && maxX >= other.minX && minY <= other.maxY && maxY >= other.minY;
  }
  bool contains(const Box& other) const {
    return minX <= other.minX && minY <= other.minY && maxX >= other.maxX && maxY >= other.maxY;
  }
};

// The box around the mapped box.
inline Box map(const Affine& transform, const Box& box) {
  const CGPoint p[] = {transform.map({box.minX, box.minY}), transform.map({box.maxX, box.minY}),
                       transform.map({box.maxX, box.maxY}), transform.map({box.minX, box.maxY})};
  return {std::min({p[0].x, p[1].x, p[2].x, p[3].x}), std::min({p[0].y, p[1].y, p[2].y, p[3].y}),
          std::max({p[0].x, p[1].x, p[2].x, p[3].x}), std::max({p[0].y, p[1].y, p[2].y, p[3].y})};
}

}  // namespace quellaro
