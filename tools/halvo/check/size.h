#pragma once

#include "check/frame_findings.h"

namespace halvo {

// The frame's <svg>: its size and namespace.
void checkRoot(const CheckedElement& element, FrameFindings& findings);

}  // namespace halvo
