#pragma once

#include <vector>

#include "import/art/outline.h"

namespace halvo::art {

// What a dashed pen draws of the outline; lengths are those of the outline's units. An outline so long that it would
// come out in very many dashes stays whole.
Outline dashed(const Outline& outline, const std::vector<double>& dashes, double offset);

}  // namespace halvo::art
