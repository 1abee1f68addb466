#pragma once

#include <vector>

#include "import/motion/motion_file.h"
#include "import/motion/structure.h"

namespace halvo::motion {

// What of a motion file the frames will not show, or not as its maker's program does: each once for a layer.
std::vector<MotionNote> surveyOf(const quellaro::JSONValue& root, const Compositions& compositions);

}  // namespace halvo::motion
