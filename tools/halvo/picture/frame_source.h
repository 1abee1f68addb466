#pragma once

#include <string>
#include <string_view>

#include "animation/frame_file.h"
#include "platform/coregraphics/geometry.h"
#include "platform/foundation/error.h"

namespace halvo {

// Whether a file is one SVG document, rather than an animation.json: its name ends in ".svg", however that is
// capitalised, or its text begins as a document's.
bool isSvgDocument(const std::string& path, std::string_view text);

// A document as the only frame.
quellaro::FrameTexts framesOfDocument(std::string text);

// The frames' texts of an SVG document (one) or of an animation.json.
struct FrameSource {
  quellaro::FrameTexts frames;
  bool isDocument = false;
};
quellaro::Result<FrameSource> readFrames(const std::string& path);
// Those of a cue: its animation.json as the player reads it.
quellaro::Result<FrameSource> readCueFrames(const std::string& path);

// Without a size there is nothing to stretch.
bool canBeShown(const quellaro::CGSize& size);

}  // namespace halvo
