#pragma once

#include "check/frame_findings.h"

namespace halvo {

inline constexpr std::string_view kNamespace = "http://www.w3.org/2000/svg";

// The frame's <svg>: its size and namespace.
void checkRoot(const CheckedElement& element, FrameFindings& findings);

}  // namespace halvo
