#pragma once

#include "import/art/display_list.h"

namespace halvo::art {

enum class Combination { Union, Intersection, Difference };

struct Region {
  const Outline& outline;
  Rule rule = Rule::NonZero;
};

// By polygon clipping. What remains of a curve is a curve again. Every point lies within the result's contours once or
// not at all. Nothing remains when there has been too much work.
Outline combine(Combination how, const Region& subject, const Region& other, const Frame& frame);

// The same inside by the nonzero rule; the outline as it is where that is so already.
Outline nonZero(const Outline& outline, Rule rule, const Frame& frame);

}  // namespace halvo::art
