#include "check/elements.h"

#include <algorithm>
#include <iterator>

namespace halvo {

namespace {

struct Row {
  std::string_view name;
  ElementRole role;
};

constexpr ElementRole kDrawn{true, {}};
constexpr ElementRole kHarmless{false, {}};
// There to be referred to: what is lost is told where it is used, and is nothing where it is not.
constexpr ElementRole kDefinition = kHarmless;

constexpr Row kRows[] = {
    {"svg", kDrawn},
    {"g", kDrawn},
    {"path", kDrawn},
    {"rect", kDrawn},
    {"circle", kDrawn},
    {"ellipse", kDrawn},
    {"line", kDrawn},
    {"polyline", kDrawn},
    {"polygon", kDrawn},
    {"title", kHarmless},
    {"desc", kHarmless},
    {"metadata", kHarmless},
    {"defs", kHarmless},
    {"view", kHarmless},
    {"cursor", kHarmless},
    {"linearGradient", kDefinition},
    {"radialGradient", kDefinition},
    {"pattern", kDefinition},
    {"clipPath", kDefinition},
    {"mask", kDefinition},
    {"filter", kDefinition},
    {"marker", kDefinition},
    {"use", {false, FindingId::Use}},
    {"symbol", kDefinition},
    {"text", {false, FindingId::Text}},
    {"image", {false, FindingId::Image}},
    {"style", {false, FindingId::Style}},
    {"animate", {false, FindingId::Animation}},
    {"animateColor", {false, FindingId::Animation}},
    {"animateMotion", {false, FindingId::Animation}},
    {"animateTransform", {false, FindingId::Animation}},
    {"set", {false, FindingId::Animation}},
    {"a", {true, FindingId::Element}},
    {"switch", {true, FindingId::Element}},
};

// Of drawing programs: "sodipodi:namedview", "rdf:RDF".
bool isForeign(std::string_view name) {
  const std::size_t colon = name.find(':');
  return colon != std::string_view::npos && name.substr(0, colon) != "svg";
}

}  // namespace

ElementRole roleOf(std::string_view name) {
  const auto* const row =
      std::find_if(std::begin(kRows), std::end(kRows), [&](const Row& each) { return each.name == name; });
  if (row != std::end(kRows)) return row->role;
  return isForeign(name) ? kHarmless : ElementRole{false, FindingId::Element};
}

}  // namespace halvo
