#include "check/geometry_check.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "check/commas.h"
#include "check/number_reading.h"
#include "svg/shapes.h"

namespace halvo {

namespace {

using namespace quellaro;

struct Shape {
  std::string_view name;
  std::array<std::string_view, 4> needed;  // unused places are empty
};

constexpr Shape kShapes[] = {
    {"rect", {"x", "y", "width", "height"}},
    {"circle", {"cx", "cy", "r"}},
    {"ellipse", {"cx", "cy", "rx", "ry"}},
    {"line", {"x1", "y1", "x2", "y2"}},
};

bool isSize(std::string_view name) {
  return name == "width" || name == "height" || name == "r" || name == "rx" || name == "ry";
}

// Not 0, as far as it can be read.
bool isRound(std::string_view value) {
  const ReadNumber number = readNumber(trimmed(value));
  return value != "auto" && !(number.isPlain && number.value == 0);
}

// An engine that strokes a shape without one of its extents draws a line.
bool isStrokedFlat(const CheckedElement& element, int zeros, int sizes) {
  const auto& stroke = element.made->strokeColor();
  return zeros > 0 && zeros < sizes && stroke && stroke->alpha > 0 && element.made->strokeWidth() > 0;
}

void checkShape(const Shape& shape, const CheckedElement& element, FrameFindings& findings) {
  for (const std::string_view name : shape.needed)
    if (!name.empty() && !element.attributes.find(name)) {
      findings.inElement(FindingId::MissingGeometry, element, "no " + std::string(name));
      break;
    }
  int sizes = 0;
  int zeros = 0;
  const XMLAttribute* zero = nullptr;
  for (const XMLAttribute& attribute : element.attributes) {
    if (std::find(shape.needed.begin(), shape.needed.end(), attribute.name) == shape.needed.end()) continue;
    const auto number = checkNumber(element, attribute, FindingId::Unit, findings);
    if (!number || !isSize(attribute.name)) continue;
    ++sizes;
    if (*number < 0) findings.inAttribute(FindingId::NegativeSize, element, attribute);
    if (*number == 0) {
      ++zeros;
      zero = &attribute;
    }
  }
  if (isStrokedFlat(element, zeros, sizes)) findings.inAttribute(FindingId::NegativeSize, element, *zero);
}

void checkPoints(const CheckedElement& element, const XMLAttribute& attribute, FrameFindings& findings) {
  std::string_view rest;
  const std::vector<double> numbers = parseNumberList(attribute.value, &rest);
  const std::size_t unread = rest.find_first_not_of(" ,\n");
  if (unread != std::string_view::npos)
    return findings.inValue(FindingId::PointsUnread, element, attribute, rest.substr(unread),
                            "\"" + printable(rest.substr(unread)) + "\" is left unread");
  if (const auto comma = misplacedComma(attribute.value))
    findings.inValue(FindingId::Comma, element, attribute, *comma, "a comma that separates no numbers");
  if (const auto point = trailingPoint(attribute.value))
    findings.inValue(FindingId::Number, element, attribute, *point, "a number that ends in its point");
  if (numbers.size() % 2 != 0)
    findings.inAttribute(FindingId::PointsOdd, element, attribute, std::to_string(numbers.size()) + " numbers");
  if (std::any_of(numbers.begin(), numbers.end(), isOutOfRange))
    findings.inAttribute(FindingId::NumberRange, element, attribute, "a coordinate beyond a million");
}

}  // namespace

std::optional<double> checkNumber(const CheckedElement& element, const XMLAttribute& attribute, FindingId unit,
                                  FrameFindings& findings) {
  const ReadNumber number = readNumber(trimmed(attribute.value));
  if (!number.isPlain) {
    findings.inAttribute(FindingId::Number, element, attribute);
  } else if (!number.rest.empty() && number.rest != "px") {
    findings.inAttribute(unit, element, attribute);
  } else if (isOutOfRange(number.value)) {
    findings.inAttribute(FindingId::NumberRange, element, attribute);
  } else {
    return number.value;
  }
  return std::nullopt;
}

void checkGeometry(const CheckedElement& element, FrameFindings& findings) {
  const auto* const shape = std::find_if(std::begin(kShapes), std::end(kShapes),
                                         [&](const Shape& each) { return each.name == element.name; });
  if (shape != std::end(kShapes)) checkShape(*shape, element, findings);
  const bool isRect = element.name == "rect";
  const bool hasPoints = element.name == "polyline" || element.name == "polygon";
  for (const XMLAttribute& attribute : element.attributes) {
    if (isRect && (attribute.name == "rx" || attribute.name == "ry") && isRound(attribute.value))
      findings.inAttribute(FindingId::RoundedCorners, element, attribute);
    if (hasPoints && attribute.name == "points") checkPoints(element, attribute, findings);
  }
}

}  // namespace halvo
