#pragma once

#include <optional>
#include <vector>

#include "import/art/display_list.h"

// The colours of a gradient along its way, from what it says to steps of one colour each.
namespace halvo::art {

struct RampPoint {
  double t = 0;
  Colour colour;
};

Colour between(const Colour& a, const Colour& b, double s);
// Of the component that differs most, of 255, whatever their alphas.
double distance(const Colour& a, const Colour& b);

struct Stretch {
  double from = 0, to = 0;
};

// The colours between two places, as lines between points in order; two at one place are a jump. Nothing where the
// gradient comes back too often to be told.
std::optional<std::vector<RampPoint>> rampOf(const Gradient& gradient, const Stretch& shown);

// The parts of a ramp that let nothing through, and the others. Those go on below the former for `overlap`.
struct RampParts {
  std::vector<std::vector<RampPoint>> opaque;
  std::vector<RampPoint> sheer;
};
RampParts partsOf(const std::vector<RampPoint>& ramp, double overlap);

struct Fineness {
  // Between neighbours, of 255.
  double step = 2;
  // How many steps can be told apart within one unit of the ramp.
  double mostPerUnit = 100;
  // In all.
  int most = 256;
};

struct Band {
  Stretch where;
  Colour colour;
};

// Side by side, in order. For opaque ramps.
std::vector<Band> bandsOf(const std::vector<RampPoint>& ramp, const Fineness& fineness);

// One of many that lie over one another, each where those below it lie too.
struct Veil {
  std::vector<Stretch> where;
  Colour colour;
};

// Of each colour of the ramp veils which together let through what it does. Laid in this order they leave no seams,
// whatever is below them.
std::vector<Veil> veilsOf(const std::vector<RampPoint>& ramp, const Fineness& fineness);

}  // namespace halvo::art
