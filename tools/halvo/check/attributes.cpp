#include "check/attributes.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "check/number_reading.h"
#include "check/outline.h"

namespace halvo {

namespace {

using namespace quellaro;

struct Rule {
  std::string_view name;
  FindingId id;
  // Values that change nothing; unused places are empty. None means that every value does.
  std::array<std::string_view, 4> neutral{};
};

constexpr Rule kRules[] = {
    {"style", FindingId::Style, {}},
    {"fill-rule", FindingId::FillRule, {"nonzero"}},
    {"clip-path", FindingId::ClipPath, {"none"}},
    {"mask", FindingId::Mask, {"none"}},
    {"filter", FindingId::Filter, {"none"}},
    {"stroke-dasharray", FindingId::StrokeDash, {"none", "0"}},
    {"stroke-linecap", FindingId::StrokeEnds, {"butt"}},
    {"stroke-linejoin", FindingId::StrokeEnds, {"miter"}},
    {"display", FindingId::Visibility, {"inline", "block"}},
    {"visibility", FindingId::Visibility, {"visible"}},
    {"marker", FindingId::Marker, {"none"}},
    {"marker-start", FindingId::Marker, {"none"}},
    {"marker-mid", FindingId::Marker, {"none"}},
    {"marker-end", FindingId::Marker, {"none"}},
    {"mix-blend-mode", FindingId::Attribute, {"normal"}},
    {"paint-order", FindingId::Attribute, {"normal", "fill", "fill stroke", "fill stroke markers"}},
    {"vector-effect", FindingId::Attribute, {"none"}},
    {"shape-rendering", FindingId::Attribute, {"auto", "geometricPrecision"}},
    {"transform-origin", FindingId::Attribute, {}},
    {"systemLanguage", FindingId::Attribute, {}},
    {"requiredFeatures", FindingId::Attribute, {}},
    {"requiredExtensions", FindingId::Attribute, {}},
};

bool isOpacity(std::string_view name) {
  return name == "opacity" || name == "fill-opacity" || name == "stroke-opacity";
}

bool isOpaque(std::string_view value) {
  const ReadNumber number = readNumber(trimmed(value));
  if (!number.isPlain) return false;
  return number.rest.empty() ? number.value >= 1 : number.rest == "%" && number.value >= 100;
}

bool isNeutral(const Rule& rule, std::string_view value) {
  const std::string_view text = trimmed(value);
  // An empty condition ("systemLanguage") is never met.
  if (text.empty()) return rule.id != FindingId::Attribute;
  return std::find(rule.neutral.begin(), rule.neutral.end(), text) != rule.neutral.end();
}

// Whether it can make a difference to the shape that it stands on. What stands on a group is for whatever is in it.
bool changesPicture(std::string_view name, const CheckedElement& element) {
  if (element.made == nullptr || element.made->path().cgPath().empty()) return true;
  const SVGElement& made = *element.made;
  const CGPath& outline = made.path().cgPath();
  const auto isVisible = [](const std::optional<CGColor>& color) { return color && color->alpha > 0; };
  const bool isStroked = isVisible(made.strokeColor()) && made.strokeWidth() > 0;
  const bool isFilled = isVisible(made.fillColor());
  const bool isRound = element.name == "circle" || element.name == "ellipse";
  if (name == "stroke-linecap") return isStroked && hasEnds(outline);
  if (name == "stroke-linejoin") return isStroked && !isRound && element.name != "line";
  if (name == "stroke-dasharray" || name == "stroke-opacity") return isStroked;
  if (name == "fill-opacity") return isFilled;
  if (name == "fill-rule") return isFilled && !isRound && element.name != "rect" && !isSimple(outline);
  return true;
}

}  // namespace

void checkPresentation(const CheckedElement& element, FrameFindings& findings) {
  for (const XMLAttribute& attribute : element.attributes) {
    if (!changesPicture(attribute.name, element)) continue;
    if (isOpacity(attribute.name)) {
      if (!isOpaque(attribute.value)) findings.inAttribute(FindingId::Opacity, element, attribute);
      continue;
    }
    const auto* const rule = std::find_if(std::begin(kRules), std::end(kRules),
                                          [&](const Rule& each) { return each.name == attribute.name; });
    if (rule != std::end(kRules) && !isNeutral(*rule, attribute.value))
      findings.inAttribute(rule->id, element, attribute);
  }
}

}  // namespace halvo
