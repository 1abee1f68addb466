#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "platform/quartzcore/raster/affine.h"

namespace quellaro {

struct Cubic {
  CGPoint p0, p1, p2, p3;

  Box box() const {
    return {std::min({p0.x, p1.x, p2.x, p3.x}), std::min({p0.y, p1.y, p2.y, p3.y}), std::max({p0.x, p1.x, p2.x, p3.x}),
            std::max({p0.y, p1.y, p2.y, p3.y})};
  }

  // In how many equal steps chords stay within the tolerance (Wang's bound, from the second differences).
  double steps(double tolerance) const {
    const double ax = p0.x - 2 * p1.x + p2.x;
    const double ay = p0.y - 2 * p1.y + p2.y;
    const double bx = p1.x - 2 * p2.x + p3.x;
    const double by = p1.y - 2 * p2.y + p3.y;
    const double bend = std::sqrt(std::max(ax * ax + ay * ay, bx * bx + by * by));
    return std::ceil(std::sqrt(bend * (0.75 / tolerance)));
  }
};

inline CGPoint midpoint(CGPoint a, CGPoint b) { return {(a.x + b.x) / 2, (a.y + b.y) / 2}; }

// Emits the end of each chord, the last being p3 itself, by forward differences.
template <class Emit>
void emitChords(const Cubic& c, int steps, Emit&& emit) {
  if (steps > 1) {
    const double h = 1.0 / steps;
    const double cx = 3 * (c.p1.x - c.p0.x);
    const double cy = 3 * (c.p1.y - c.p0.y);
    const double bx = 3 * (c.p2.x - c.p1.x) - cx;
    const double by = 3 * (c.p2.y - c.p1.y) - cy;
    const double ax = (c.p3.x - c.p0.x - cx - bx) * h * h * h;
    const double ay = (c.p3.y - c.p0.y - cy - by) * h * h * h;
    CGPoint p = c.p0;
    double dx = ax + bx * h * h + cx * h;
    double dy = ay + by * h * h + cy * h;
    double ddx = 6 * ax + 2 * bx * h * h;
    double ddy = 6 * ay + 2 * by * h * h;
    for (int i = 1; i < steps; ++i) {
      p.x += dx;
      p.y += dy;
      dx += ddx;
      dy += ddy;
      ddx += 6 * ax;
      ddy += 6 * ay;
      emit(p);
    }
  }
  emit(c.p3);
}

// The same for a curve of any size: parts that need many steps are halved until they need few, and a part whose box
// does not show becomes one chord. So the work depends on what shows.
template <class Shows, class Emit>
void emitVisibleChords(const Cubic& whole, double tolerance, Shows&& shows, Emit&& emit) {
  constexpr int kFewSteps = 32;
  // Each halving quarters the bend, so honest curves end long before this depth. So far away that coordinates have lost
  // their fractions halving changes nothing any more, and the count of halvings ends it.
  constexpr std::size_t kDeepest = 64;
  constexpr int kMostHalvings = 2048;
  std::array<Cubic, kDeepest + 1> open;
  std::size_t count = 0;
  int halvings = 0;
  open[count++] = whole;
  while (count > 0) {
    const Cubic c = open[--count];
    const double steps = c.steps(tolerance);
    if (steps <= kFewSteps) {
      emitChords(c, static_cast<int>(steps), emit);
    } else if (count + 2 > kDeepest || halvings == kMostHalvings || !shows(c.box())) {
      emit(c.p3);
    } else {
      ++halvings;
      const CGPoint p01 = midpoint(c.p0, c.p1);
      const CGPoint p12 = midpoint(c.p1, c.p2);
      const CGPoint p23 = midpoint(c.p2, c.p3);
      const CGPoint p012 = midpoint(p01, p12);
      const CGPoint p123 = midpoint(p12, p23);
      const CGPoint middle = midpoint(p012, p123);
      open[count++] = {middle, p123, p23, c.p3};
      open[count++] = {c.p0, p01, p012, middle};
    }
  }
}

}  // namespace quellaro
