#pragma once

#include <string>

#include "animation/frame_file.h"
#include "platform/coregraphics/geometry.h"
#include "platform/foundation/error.h"

namespace halvo {

// By its name, which then ends in ".svg", however that is capitalised. Any other file is an animation.json.
bool isSvgDocument(const std::string& path);

// The frames' texts of an SVG document (one) or of an animation.json.
quellaro::Result<quellaro::FrameTexts> readFrames(const std::string& source);

// Without a size there is nothing to stretch.
bool canBeShown(const quellaro::CGSize& size);

}  // namespace halvo
