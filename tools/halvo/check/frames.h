#pragma once

#include <string>
#include <vector>

#include "check/cue.h"
#include "platform/foundation/error.h"

namespace halvo {

// Every frame of an animation.json, or the one of an SVG document, given what was read of it. `file` is how findings
// call it. Gives how much each changes the picture, 0 to 1: as many as there are frames.
std::vector<double> checkFrames(quellaro::Result<std::string> text, bool isDocument, const std::string& file,
                                Report& report, const CheckProgress& progress);

// The SVG files of a folder, which may become a cue, in natural order.
std::vector<double> checkFolder(const std::string& folder, Report& report, const CheckProgress& progress);

}  // namespace halvo
