#pragma once

#include <memory>
#include <string_view>

#include "check/frame_findings.h"
#include "svg/document.h"

namespace halvo {

// Parses one frame as the player does and tells of everything that is lost. `owner` keeps the text alive. Null when the
// frame cannot be shown.
std::shared_ptr<const quellaro::SVGDocument> checkDocument(std::string_view text,
                                                           const std::shared_ptr<const void>& owner,
                                                           FrameFindings& findings);

}  // namespace halvo
