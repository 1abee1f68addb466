// Elements and documents as layers.
#include <utility>

#include "platform/quartzcore/shape_layer.h"
#include "svg/document.h"

namespace quellaro {

namespace {

std::shared_ptr<CAShapeLayer> layerWithoutChildren(const SVGElement& element) {
  auto layer = std::make_shared<CAShapeLayer>();
  layer->setPath(element.path().cgPath());
  layer->setStrokeColor(element.strokeColor());
  layer->setLineWidth(element.strokeWidth());
  layer->setFillColor(element.fillColor());
  if (element.transform() != nullptr) layer->setTransform(*element.transform());
  return layer;
}

}  // namespace

std::shared_ptr<CAShapeLayer> SVGElement::makeShapeLayer() const {
  const std::shared_ptr<CAShapeLayer> top = layerWithoutChildren(*this);
  // Layers that still lack their children's: a tree may be too deep to recurse.
  std::vector<std::pair<const SVGElement*, CALayer*>> pending{{this, top.get()}};
  while (!pending.empty()) {
    const auto [element, layer] = pending.back();
    pending.pop_back();
    std::vector<std::shared_ptr<CALayer>> sublayers;
    sublayers.reserve(element->children().size());
    for (const std::shared_ptr<SVGElement>& child : element->children()) {
      sublayers.push_back(layerWithoutChildren(*child));
      if (!child->children().empty()) pending.emplace_back(child.get(), sublayers.back().get());
    }
    layer->setSublayers(std::move(sublayers));
  }
  return top;
}

std::shared_ptr<CALayer> SVGDocument::makeLayer() const {
  if (!elements_ || !viewbox_) return nullptr;
  auto root = std::make_shared<CALayer>();
  root->setBounds({{0, 0}, *viewbox_});
  std::vector<std::shared_ptr<CALayer>> sublayers;
  sublayers.reserve(elements_->size());
  for (const std::shared_ptr<SVGElement>& element : *elements_) sublayers.push_back(element->makeShapeLayer());
  root->setSublayers(std::move(sublayers));
  return root;
}

}  // namespace quellaro
