#pragma once

#include "check/frame_findings.h"

namespace halvo {

// Path data: reads it with the engine's own parser and compares each command with what a standard renderer makes of the
// same numbers.
void checkPath(const CheckedElement& element, FrameFindings& findings);

}  // namespace halvo
