#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "animation/halvo_view.h"
#include "options.h"
#include "svg/document.h"

namespace halvo {

// For the option --background.
std::function<std::optional<std::string>(const std::string&)> setBackground(quellaro::QLHalvoBackground& background);

// A view of that size in pixels, laid out, which shows its backdrop alone.
std::shared_ptr<quellaro::QLHalvoView> makeView(Size size, quellaro::QLHalvoBackground background);

// The same without a backdrop: what is not painted stays as it was.
std::shared_ptr<quellaro::QLHalvoView> makeClearView(Size size);

// Shows the document at once, as a play shows a frame; null shows the backdrop alone.
void showFrame(const quellaro::QLHalvoView& view, const std::shared_ptr<const quellaro::SVGDocument>& frame);

}  // namespace halvo
