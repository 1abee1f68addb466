#pragma once

#include "check/cue.h"

namespace halvo {

// Every frame of an animation.json, or the one of an SVG document. `file` is how findings call it. Gives whether it
// could be read.
bool checkFrames(const std::string& path, const std::string& file, Report& report, const CheckProgress& progress,
                 std::size_t& frames);

}  // namespace halvo
