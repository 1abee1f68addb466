#pragma once

#include <string>

#include "animation/frame_file.h"
#include "platform/coregraphics/geometry.h"
#include "platform/foundation/error.h"

namespace halvo {

// The frames' texts of an SVG document (one) or of an animation.json. A name that ends in ".svg" means the first.
quellaro::Result<quellaro::FrameTexts> readFrames(const std::string& source);

// Without a size there is nothing to stretch.
bool canBeShown(const quellaro::CGSize& size);

}  // namespace halvo
