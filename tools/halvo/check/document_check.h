#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "check/frame_findings.h"
#include "platform/coregraphics/geometry.h"

namespace halvo {

// Parses one frame as the player does and tells of everything that is lost. `owner` keeps the text alive. Gives the
// frame's size, or nothing when it cannot be shown.
std::optional<quellaro::CGSize> checkDocument(std::string_view text, const std::shared_ptr<const void>& owner,
                                              FrameFindings& findings);

}  // namespace halvo
