#pragma once

#include "check/frame_findings.h"

namespace halvo {

// Attributes that would change the picture elsewhere and that the engine does not read. Colours, sizes, data and
// transforms are looked at by others.
void checkPresentation(const CheckedElement& element, FrameFindings& findings);

}  // namespace halvo
