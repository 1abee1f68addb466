#pragma once

#include "platform/coregraphics/path.h"

namespace halvo {

// Whether some part of the outline, when filled, is more than a line.
bool hasArea(const quellaro::CGPath& outline);

// Whether the outline, when stroked, has a corner whose miter the engine and a renderer with that miter limit draw
// differently.
bool hasCornerBetween(const quellaro::CGPath& outline, double miterLimit);

}  // namespace halvo
