#pragma once

#include "platform/coregraphics/path.h"

namespace halvo {

// Whether some part of the outline, when filled, is more than a line.
bool hasArea(const quellaro::CGPath& outline);

// Whether some part of the outline has ends, when stroked.
bool hasEnds(const quellaro::CGPath& outline);

// Whether it is one contour that does not cross itself, so that every rule fills it alike. False where that takes long
// to find out.
bool isSimple(const quellaro::CGPath& outline);

// Whether the outline, when stroked, has a corner whose miter the engine and a renderer with that miter limit draw
// differently.
bool hasCornerBetween(const quellaro::CGPath& outline, double miterLimit);

}  // namespace halvo
