#include "svg/document_parser.h"

#include <utility>

#include "platform/foundation/numbers.h"
#include "svg/inert_elements.h"
#include "svg/path.h"
#include "svg/shapes.h"

namespace quellaro {

namespace {

// Of a document that does not say how large it is.
constexpr double kDefaultSide = 100;

template <class Kind>
std::shared_ptr<SVGElement> make(const std::shared_ptr<Arena>& arena, std::string_view name, XMLAttributes attributes) {
  return makeShared<Kind>(arena, name, attributes);
}

struct Kind {
  std::string_view name;
  std::shared_ptr<SVGElement> (*make)(const std::shared_ptr<Arena>& arena, std::string_view name,
                                      XMLAttributes attributes);
};

constexpr Kind kKinds[] = {
    {"g", make<SVGElement>},         {"path", make<SVGPath>},         {"rect", make<SVGRect>},
    {"circle", make<SVGCircle>},     {"ellipse", make<SVGEllipse>},   {"line", make<SVGLine>},
    {"polyline", make<SVGPolyline>}, {"polygon", make<SVGPolygon>},   {"linearGradient", make<SVGLinearGradient>},
    {"filter", make<SVGFilter>},     {"clipPath", make<SVGClippath>},
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
  std::shared_ptr<SVGElement> element = kind->make(arena_, name, attributes);
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
