#pragma once

#include <vector>

#include "import/art/display_list.h"
#include "import/art/ramp.h"

namespace halvo::art {

// Where in the frame a gradient has which colour.
class GradientField {
 public:
  GradientField(const Gradient& gradient, const Frame& frame);

  // Neither circles that do not lie in one another nor a gradient of no length.
  bool isRegular() const { return isRegular_; }
  // Of all that lies within the box.
  Stretch stretchOf(const Box& box) const;
  // The frame's units that one of the ramp takes, where it takes fewest.
  double unitsPerStep() const;

  // What of the outline lies there.
  Outline within(const Outline& outline, const std::vector<Stretch>& where) const;
  // Opaque bands of a ramp over one another, so that no seam shows between them.
  std::vector<Outline> layered(const Outline& outline, const std::vector<Band>& bands, double overlap) const;

 private:
  double at(Point p) const;
  Outline circle(double t) const;
  Outline between(const Outline& outline, double from, double to) const;
  bool isInside(const Outline& inner, const Outline& outline) const;
  std::vector<Outline> layeredCircles(const Outline& outline, const std::vector<Band>& bands, double overlap) const;

  const Gradient& gradient_;
  const Frame& frame_;
  bool isRegular_ = true;
  // Of a linear one: t is dot(p, slope) + origin.
  Point slope_;
  double origin_ = 0;
};

}  // namespace halvo::art
