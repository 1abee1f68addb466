#pragma once

#include "import/art/display_list.h"

namespace halvo::art {

// What the pen covers, as an outline that winds one way only. Curves become curves.
Outline strokeOutline(const Outline& outline, const StrokeStyle& style, const Frame& frame);

}  // namespace halvo::art
