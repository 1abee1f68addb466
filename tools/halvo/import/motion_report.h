#pragma once

#include <string>

#include "check/report.h"
#include "import/frames.h"
#include "import/motion_frames.h"

namespace halvo {

// Tells what of a motion file the frames do not show, and of a large animation which layers make it so. Answers whether
// they do not show all of it.
bool tellOfMotion(const MotionFrames& motion, const std::string& file, const ImportedFrames& frames, Report& report);

}  // namespace halvo
