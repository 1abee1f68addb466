#pragma once

#include <memory>
#include <string>
#include <vector>

#include "animation/frame_file.h"
#include "options.h"
#include "platform/foundation/error.h"
#include "platform/quartzcore/layer.h"
#include "svg/document.h"

namespace halvo {

// The frames' texts of an SVG document (one) or of an animation.json. A name that ends in ".svg" means the first.
quellaro::Result<quellaro::FrameTexts> readFrames(const std::string& source);

// Without a size there is nothing to stretch.
bool canBeShown(const quellaro::CGSize& size);

enum class Background { Black, White };

// What a view of that size shows of the document: a backdrop, and on it, centred, a square as large as the shorter
// side, which the document fills whatever its proportions are. Just the backdrop when the document cannot be shown.
std::shared_ptr<quellaro::CALayer> viewLayer(const quellaro::SVGDocument& document, Size size, Background background);

// For the option --background.
std::function<std::optional<std::string>(const std::string&)> setBackground(Background& background);

}  // namespace halvo
