// Elements and documents as layers.
#include <utility>

#include "platform/quartzcore/shape_layer.h"
#include "svg/document.h"

namespace quellaro {

namespace {

// A tree's layers are made and go together. About ten layers.
constexpr std::size_t kFirstBlock = 1 << 12;

using ElementPointer = std::shared_ptr<const SVGElement>;

std::shared_ptr<CAShapeLayer> layerWithoutChildren(const ElementPointer& element, const std::shared_ptr<Arena>& arena) {
  auto layer = makeShared<CAShapeLayer>(arena);
  layer->setPath({element, &element->path().cgPath()});
  layer->setStrokeColor(element->strokeColor());
  layer->setLineWidth(element->strokeWidth());
  layer->setFillColor(element->fillColor());
  if (element->transform() != nullptr) layer->setTransform(*element->transform());
  return layer;
}

// Once, not in both places that use it.
[[gnu::noinline]] std::shared_ptr<CAShapeLayer> layerOf(const ElementPointer& top,
                                                        const std::shared_ptr<Arena>& arena) {
  std::shared_ptr<CAShapeLayer> topLayer = layerWithoutChildren(top, arena);
  // Layers that still lack their children's: a tree may be too deep to recurse.
  std::vector<std::pair<const SVGElement*, CALayer*>> pending;
  if (!top->children().empty()) pending.emplace_back(top.get(), topLayer.get());
  while (!pending.empty()) {
    const auto [element, layer] = pending.back();
    pending.pop_back();
    std::vector<std::shared_ptr<CALayer>> sublayers;
    sublayers.reserve(element->children().size());
    for (const std::shared_ptr<SVGElement>& child : element->children()) {
      sublayers.push_back(layerWithoutChildren(child, arena));
      if (!child->children().empty()) pending.emplace_back(child.get(), sublayers.back().get());
    }
    layer->setSublayers(std::move(sublayers));
  }
  return topLayer;
}

}  // namespace

std::shared_ptr<CAShapeLayer> SVGElement::makeShapeLayer() const {
  return layerOf(shared_from_this(), std::make_shared<Arena>(kFirstBlock));
}

std::shared_ptr<CALayer> SVGDocument::makeLayer() const {
  if (!elements_ || !viewbox_) return nullptr;
  const auto arena = std::make_shared<Arena>(kFirstBlock);
  auto root = makeShared<CALayer>(arena);
  root->setBounds({{0, 0}, *viewbox_});
  std::vector<std::shared_ptr<CALayer>> sublayers;
  sublayers.reserve(elements_->size());
  for (const std::shared_ptr<SVGElement>& element : *elements_) sublayers.push_back(layerOf(element, arena));
  root->setSublayers(std::move(sublayers));
  return root;
}

}  // namespace quellaro
