#pragma once

#include <optional>
#include <vector>

#include "import/art/outline.h"

namespace halvo::art {

// The points p with dot(p, normal) <= limit.
struct HalfPlane {
  Point normal;
  double limit = 0;
};

// What of the outline's inside lies there, by either rule: curves stay curves, each contour stays one, its gaps closed
// along the border.
Outline cut(const Outline& outline, const HalfPlane& plane);
Outline cut(Outline outline, const Box& box);

// The half planes whose common part a polygon without dents is; nothing for any other outline.
std::optional<std::vector<HalfPlane>> halfPlanesOf(const Outline& outline);
bool containsBox(const std::vector<HalfPlane>& planes, const Box& box);

}  // namespace halvo::art
