#pragma once

#include "check/cue.h"
#include "platform/foundation/error.h"

namespace halvo {

// Every frame of an animation.json, or the one of an SVG document, given what was read of it. `file` is how findings
// call it. Gives whether there are any.
bool checkFrames(quellaro::Result<std::string> text, bool isDocument, const std::string& file, Report& report,
                 const CheckProgress& progress, std::size_t& frames);

// The SVG files of a folder, which may become a cue, in natural order.
void checkFolder(const std::string& folder, Report& report, const CheckProgress& progress, std::size_t& frames);

}  // namespace halvo
