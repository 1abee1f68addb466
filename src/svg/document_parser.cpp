#include "svg/document_parser.h"

#include <memory>
#include <utility>

#include "platform/foundation/text/numbers.h"
#include "svg/inert_elements.h"
#include "svg/path_data.h"
#include "svg/shapes.h"

namespace quellaro {

namespace {

// Of a document that does not say how large it is.
constexpr double kDefaultSide = 100;

template <class Element>
SVGElement* construct(Arena& arena, std::string_view name, XMLAttributes attributes) {
  return std::construct_at(static_cast<Element*>(arena.allocate(sizeof(Element), alignof(Element))), name, attributes);
}

struct Kind {
  std::string_view name;
  SVGElement* (*construct)(Arena& arena, std::string_view name, XMLAttributes attributes);
};

constexpr Kind kKinds[] = {
    {"g", construct<SVGElement>},
    {"path", construct<SVGPath>},
    {"rect", construct<SVGRect>},
    {"circle", construct<SVGCircle>},
    {"ellipse", construct<SVGEllipse>},
    {"line", construct<SVGLine>},
    {"polyline", construct<SVGPolyline>},
    {"polygon", construct<SVGPolygon>},
    {"linearGradient", construct<SVGLinearGradient>},
    {"filter", construct<SVGFilter>},
    {"clipPath", construct<SVGClippath>},
};

const Kind* kindNamed(std::string_view name) {
  for (const Kind& kind : kKinds)
    if (kind.name == name) return &kind;
  return nullptr;
}

double side(XMLAttributes attributes, std::string_view name) {
  const std::optional<std::string_view> text = attributes.find(name);
  return text ? doubleValue(*text) : kDefaultSide;
}

}  // namespace

void SVGDocumentParser::parserDidStartElement(std::string_view name, XMLAttributes attributes) {
  if (name == "svg") {
    viewbox_ = CGSize{side(attributes, "width"), side(attributes, "height")};
    if (observer_ != nullptr) observer_->didStartElement(name, attributes, nullptr);
    return;
  }
  const Kind* const kind = kindNamed(name);
  if (kind == nullptr) {
    if (observer_ != nullptr) observer_->didStartElement(name, attributes, nullptr);
    return;
  }
  // One kind of counter for all kinds of elements.
  std::shared_ptr<SVGElement> element(kind->construct(*arena_, name, attributes), std::destroy_at<SVGElement>,
                                      ArenaAllocator<SVGElement>(arena_));
  element->moveOutlineInto(arena_->bulk());
  if (stack_.count() > 0) element->inheritPaint(*stack_.peek());
  if (observer_ != nullptr) observer_->didStartElement(name, attributes, element.get());
  stack_.push(std::move(element));
}

void SVGDocumentParser::parserDidEndElement(std::string_view name) {
  if (observer_ != nullptr) observer_->didEndElement(name);
  if (kindNamed(name) == nullptr || stack_.count() == 0) return;
  std::shared_ptr<SVGElement> element = stack_.pop();
  if (stack_.count() == 0)
    elements_.push_back(std::move(element));
  else
    SVGElement::appendChild(stack_.peek(), std::move(element));
}

}  // namespace quellaro
