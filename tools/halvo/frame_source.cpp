#include "frame_source.h"

#include <algorithm>
#include <cmath>

#include "platform/foundation/file_manager.h"

namespace halvo {

namespace {

using namespace quellaro;

// Stretches the document's layer over its square, as SVGView::showLayer does.
void fit(CALayer& document, double side) {
  const CGSize size = document.bounds().size;
  document.setPosition({side * 0.5, side * 0.5});
  const CATransform3D own = document.transform().value_or(CATransform3DIdentity);
  document.setTransform(CATransform3DScale(own, side / size.width, side / size.height, 1));
}

}  // namespace

Result<FrameTexts> readFrames(const std::string& source) {
  if (!source.ends_with(".svg")) return readFrameFile(source);
  auto text = FileManager::readAtPath(source);
  if (!text) return text.error();
  const auto kept = std::make_shared<const std::string>(std::move(*text));
  return FrameTexts{kept, {*kept}, {}};
}

bool canBeShown(const CGSize& size) {
  return std::isfinite(size.width) && std::isfinite(size.height) && size.width != 0 && size.height != 0;
}

std::shared_ptr<CALayer> viewLayer(const SVGDocument& document, Size size, Background background) {
  const double width = size.width;
  const double height = size.height;
  auto view = std::make_shared<CALayer>();
  view->setBounds({{0, 0}, {width, height}});
  view->setPosition({width * 0.5, height * 0.5});
  const double grey = background == Background::White ? 1 : 0;
  view->setBackgroundColor(CGColor{grey, grey, grey, 1});
  auto shown = document.makeLayer();
  if (shown == nullptr || !canBeShown(shown->bounds().size)) return view;
  const double side = std::min(width, height);
  auto square = std::make_shared<CALayer>();
  square->setBounds({{0, 0}, {side, side}});
  square->setPosition(view->position());
  fit(*shown, side);
  square->addSublayer(std::move(shown));
  view->addSublayer(std::move(square));
  return view;
}

std::function<std::optional<std::string>(const std::string&)> setBackground(Background& background) {
  return [&background](const std::string& value) -> std::optional<std::string> {
    if (value != "black" && value != "white") return "black or white is needed";
    background = value == "white" ? Background::White : Background::Black;
    return std::nullopt;
  };
}

}  // namespace halvo
