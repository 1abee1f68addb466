#pragma once

#include "check/frame_findings.h"

namespace halvo {

// The attributes that make a basic shape: whether they are there, and whether they are read as they look.
void checkGeometry(const CheckedElement& element, FrameFindings& findings);

// A number of the frame's own size or a shape's, which both may carry the unit px. Nothing when it was told that
// it is read otherwise than it looks; `unit` is what a unit other than px is called.
std::optional<double> checkNumber(const CheckedElement& element, const quellaro::XMLAttribute& attribute,
                                  FindingId unit, FrameFindings& findings);

}  // namespace halvo
