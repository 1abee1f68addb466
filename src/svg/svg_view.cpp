#include "svg/svg_view.h"

#include <cmath>

namespace quellaro {

std::shared_ptr<SVGView> SVGView::initWithFrame(CGRect frame) { return std::shared_ptr<SVGView>(new SVGView(frame)); }

std::shared_ptr<SVGView> SVGView::initWithCoder(const NSCoder& coder) {
  const auto frame = coder.decodeCGRectForKey(kFrameKey);
  return frame ? initWithFrame(*frame) : nullptr;
}

void SVGView::showLayer(const std::shared_ptr<CALayer>& documentLayer) {
  layer()->setSublayers({});
  setNeedsDisplay();
  if (!documentLayer) return;
  const bool hasDocumentSize = svgDocument_ && svgDocument_->viewbox();
  const CGSize size = hasDocumentSize ? *svgDocument_->viewbox() : documentLayer->bounds().size;
  if (size.width == 0 || size.height == 0 || !std::isfinite(size.width) || !std::isfinite(size.height)) return;
  const CGSize room = bounds().size;
  documentLayer->setBounds({{0, 0}, size});
  documentLayer->setPosition({room.width * 0.5, room.height * 0.5});
  documentLayer->setTransform(CATransform3DScale(documentLayer->transform().value_or(CATransform3DIdentity),
                                                 room.width / size.width, room.height / size.height, 1));
  layer()->addSublayer(documentLayer);
}

}  // namespace quellaro
