#include "check/paint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "check/number_reading.h"
#include "check/outline.h"
#include "svg/hex_color.h"

namespace halvo {

namespace {

using namespace quellaro;
using Kind = StandardPaint::Kind;

bool isHexadecimal(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

bool isColor(std::string_view text) {
  if (text.empty() || text.front() != '#' || !isHexadecimal(text.substr(1))) return false;
  return text.size() == 4 || text.size() == 5 || text.size() == 7 || text.size() == 9;
}

// Whether the element of that id is a gradient or a pattern of the same frame.
bool isGradient(std::string_view reference, std::string_view frame) {
  const std::size_t start = reference.find('#');
  if (start == std::string_view::npos) return false;
  const std::string id(reference.substr(start + 1, reference.find_first_of(")'\"", start) - start - 1));
  for (const char* const quote : {"\"", "'"})
    if (const std::size_t at = frame.find(" id=" + (quote + id) + quote); at != std::string_view::npos) {
      const std::string_view element = frame.substr(frame.rfind('<', at) + 1);
      for (const std::string_view name : {"linearGradient", "radialGradient", "pattern"})
        if (element.starts_with(name)) return true;
    }
  return false;
}

FindingId findingOf(std::string_view text, std::string_view frame) {
  if (trimmed(text).starts_with("url")) return isGradient(text, frame) ? FindingId::Gradient : FindingId::PaintServer;
  if (text.find('(') != std::string_view::npos) return FindingId::ColorFunction;
  return text.find('#') != std::string_view::npos || isHexadecimal(text) ? FindingId::ColorDigits
                                                                         : FindingId::ColorName;
}

std::string readAs(std::string_view text) {
  const CGColor color = colorFromHexString(text);
  if (color.alpha == 0) return ", read as no paint";
  const auto byte = [](double component) { return static_cast<unsigned>(std::lround(component * 255)); };
  std::array<char, 32> digits;
  std::snprintf(digits.data(), digits.size(), ", read as #%02x%02x%02x%02x", byte(color.red), byte(color.green),
                byte(color.blue), byte(color.alpha));
  return digits.data();
}

StandardPaint paintOf(const CheckedElement& element, const XMLAttribute& attribute, bool isRead,
                      FrameFindings& findings) {
  const std::string_view text = attribute.value;
  if (text == "none" || text == "transparent") return {Kind::None, {}, false, isRead};
  if (isColor(text)) return {Kind::Color, colorFromHexString(text), false, isRead};
  if (isRead)
    findings.inAttribute(findingOf(text, findings.text()), element, attribute,
                         std::string(attribute.name) + "=\"" + printable(text) + "\"" + readAs(text));
  return {Kind::Unclear, {}, false, isRead};
}

// A length that the standard and the engine read alike.
std::optional<double> strokeWidthOf(const CheckedElement& element, const XMLAttribute& attribute, bool isRead,
                                    FrameFindings& findings) {
  const ReadNumber number = readNumber(attribute.value);
  if (number.isPlain && number.rest.empty() && number.value >= 0 && !isOutOfRange(number.value)) return number.value;
  if (isRead) findings.inAttribute(FindingId::StrokeWidthValue, element, attribute);
  return std::nullopt;
}

bool isSame(const StandardPaint& standard, const std::optional<CGColor>& engine) {
  const bool engineIsVisible = engine && engine->alpha > 0;
  if (standard.isVisible() != engineIsVisible) return false;
  return !engineIsVisible || standard.color == *engine;
}

bool dropsPaint(const StandardPaint& standard, const std::optional<CGColor>& engine) {
  if (standard.isRead) return false;
  return standard.kind == Kind::Unclear || !isSame(standard, engine);
}

}  // namespace

StandardStyle inheritedStyle(const StandardStyle& parent, const CheckedElement& element, bool isRead,
                             FrameFindings& findings) {
  StandardStyle style = parent;
  for (const XMLAttribute& attribute : element.attributes) {
    if (attribute.name == "fill") style.fill = paintOf(element, attribute, isRead, findings);
    if (attribute.name == "stroke") style.stroke = paintOf(element, attribute, isRead, findings);
    if (attribute.name == "stroke-width") style.strokeWidth = strokeWidthOf(element, attribute, isRead, findings);
    if (attribute.name == "stroke-miterlimit") {
      const ReadNumber number = readNumber(trimmed(attribute.value));
      if (number.isPlain && number.rest.empty() && number.value >= 1) style.miterLimit = number.value;
    }
  }
  return style;
}

void checkPaint(const CheckedElement& element, const StandardStyle& style, FrameFindings& findings) {
  const SVGElement& made = *element.made;
  const CGPath& outline = made.path().cgPath();
  // A style that is ignored has been told of.
  const bool isStyled = element.attributes.find("style").value_or("").find("fill") != std::string_view::npos;
  if (style.fill.isDefault && !isStyled && !made.fillColor() && hasArea(outline))
    findings.inElement(FindingId::DefaultFill, element, "no fill");
  if (dropsPaint(style.fill, made.fillColor()) && hasArea(outline))
    findings.inElement(FindingId::DroppedPaint, element, "its fill stands on an element that gives none");
  if (dropsPaint(style.stroke, made.strokeColor())) {
    findings.inElement(FindingId::DroppedPaint, element, "its stroke stands on an element that gives none");
    return;
  }
  if (!style.stroke.isVisible() || style.strokeWidth == 0.0) return;
  if (!element.attributes.find("stroke-width")) {
    findings.inElement(FindingId::StrokeWidthMissing, element, "a stroke without stroke-width");
    return;
  }
  if (hasCornerBetween(outline, style.miterLimit))
    findings.inElement(FindingId::Miter, element, "a stroked corner that is sharper than about 29 degrees");
}

}  // namespace halvo
