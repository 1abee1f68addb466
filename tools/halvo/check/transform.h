#pragma once

#include "check/frame_findings.h"

namespace halvo {

// Compares what the engine and a standard renderer make of the element's transform, if it has one. `isRead` is false
// for elements whose transform the engine does not read.
void checkTransform(const CheckedElement& element, bool isRead, FrameFindings& findings);

}  // namespace halvo
