#include "svg/element.h"

#include <iterator>
#include <utility>

#include "platform/foundation/text/numbers.h"
#include "svg/hex_color.h"
#include "svg/transform_parser.h"

namespace quellaro {

SVGElement::SVGElement(std::string_view name, XMLAttributes attributes) : name_(name), attr_(attributes) {
  applyCommonAttributes(attr_);
}

SVGElement::~SVGElement() {
  std::vector<std::shared_ptr<SVGElement>> doomed = std::move(children_);
  while (!doomed.empty()) {
    const std::shared_ptr<SVGElement> element = std::move(doomed.back());
    doomed.pop_back();
    // An element that somebody else still holds keeps its children.
    if (element.use_count() != 1) continue;
    doomed.insert(doomed.end(), std::make_move_iterator(element->children_.begin()),
                  std::make_move_iterator(element->children_.end()));
    element->children_.clear();
  }
}

void SVGElement::applyCommonAttributes(XMLAttributes attributes) {
  if (const auto stroke = attributes.find("stroke")) strokeColor_ = colorFromHexString(*stroke);
  if (const auto width = attributes.find("stroke-width")) strokeWidth_ = floatFromText(*width).value_or(0.0F);
  if (const auto fill = attributes.find("fill")) fillColor_ = colorFromHexString(*fill);
  if (const auto transform = attributes.find("transform"))
    transform_ = std::make_unique<const CATransform3D>(SVGTransformParser::parseTransform(*transform));
}

void SVGElement::buildPath(XMLAttributes /*attributes*/) {}

void SVGElement::inheritPaint(const SVGElement& from) {
  if (!fillColor_) fillColor_ = from.fillColor_;
  if (!strokeColor_) strokeColor_ = from.strokeColor_;
}

void SVGElement::appendChild(const std::shared_ptr<SVGElement>& parent, std::shared_ptr<SVGElement> child) {
  child->parent_ = parent;
  parent->children_.push_back(std::move(child));
}

}  // namespace quellaro
