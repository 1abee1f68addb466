#include "picture/frame_view.h"

#include "animation/halvo_animation_view.h"

namespace halvo {

using namespace quellaro;

std::function<std::optional<std::string>(const std::string&)> setBackground(QLHalvoBackground& background) {
  return [&background](const std::string& value) -> std::optional<std::string> {
    if (value != "black" && value != "white") return "black or white is needed";
    background = value == "white" ? QLHalvoBackground::white : QLHalvoBackground::black;
    return std::nullopt;
  };
}

std::shared_ptr<QLHalvoView> makeView(Size size, QLHalvoBackground background) {
  auto view = QLHalvoView::initWithFrame({{0, 0}, {static_cast<double>(size.width), static_cast<double>(size.height)}});
  view->setBackground(background);
  view->layoutIfNeeded();
  return view;
}

std::shared_ptr<QLHalvoView> makeClearView(Size size) {
  auto view = makeView(size, QLHalvoBackground::black);
  view->backgroundView()->setBackgroundColor(std::nullopt);
  return view;
}

void showFrame(const QLHalvoView& view, const std::shared_ptr<const SVGDocument>& frame) {
  view.animtionView()->setSvgDocument(frame);
  view.animtionView()->showLayer(frame ? frame->makeLayer() : nullptr);
}

}  // namespace halvo
